#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace emulator {

struct Reply
{
    int status = 200;
    std::string body;
};

// A volume's default extent as the plug-in description gives it, per dimension.
struct VolumeExtent
{
    double min[3] = {0, 0, 0};
    double max[3] = {1199, 899, 1500};
};

// The service's behaviour without the HTTP around it: registrations, mounts, the virtual-drive
// folder and the plug-in description. Thread-safe. Link files are not written here but handed
// to the scheduler given at construction, since the service writes them a while after the mount.
class FastService
{
public:
    struct Config
    {
        std::string driveDir;
        std::string version = "2.0.0";
        bool pluginInstalled = true;
        // Registrations and mounts are kept in this file across restarts when it is set.
        std::string stateFile;
    };
    // Asked to write linkFile, pointing at driveFile, some time later.
    using LinkScheduler = std::function<void(const std::string& linkFile, const std::string& driveFile)>;

    FastService(Config config, LinkScheduler scheduleLink);

    Reply handle(const std::string& method, const std::string& target, const std::string& body);

    void setPluginInstalled(bool installed);
    void setVersion(const std::string& version);
    void setVolumeExtent(const std::string& url, const VolumeExtent& extent);

    struct Volume
    {
        std::string id;
        std::string url;
    };
    struct MountedFile
    {
        std::string id;
        std::string vdsId;
        std::string path;
    };
    std::vector<Volume> volumes() const;
    std::vector<MountedFile> files() const;

private:
    Reply about() const;
    Reply plugin(const std::string& name, const std::string& query) const;
    Reply listVolumes() const;
    Reply registerVolume(const std::string& body);
    Reply unregisterVolume(const std::string& id);
    Reply listFiles() const;
    Reply mount(const std::string& body);
    Reply unmount(const std::string& id);

    const Volume* findVolume(const std::string& id) const;
    std::string newId();
    std::string drivePath(const std::string& path) const;
    void removeFromDrive(const MountedFile& file) const;
    void load();
    void save() const;

    mutable std::mutex m_mutex;
    Config m_config;
    LinkScheduler m_scheduleLink;
    std::vector<Volume> m_volumes;
    std::vector<MountedFile> m_files;
    std::map<std::string, VolumeExtent> m_extents;
};

} // namespace emulator
