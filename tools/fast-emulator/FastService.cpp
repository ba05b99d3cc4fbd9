#include "FastService.h"

#include "ServiceJson.h"

#include <Poco/File.h>
#include <Poco/FileStream.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>
#include <Poco/Path.h>
#include <Poco/URI.h>
#include <Poco/UUIDGenerator.h>

#include <algorithm>

namespace emulator {

namespace {

const std::string kApi = "/api/v2/";
// The host project's file extension, which both the link and the drive entry carry.
const std::string kLinkExtension = ".kv";

void writeFile(const std::string& path, const std::string& content)
{
    Poco::FileOutputStream out(path);
    out << content;
}

} // namespace

FastService::FastService(Config config, LinkScheduler scheduleLink)
    : m_config(std::move(config)), m_scheduleLink(std::move(scheduleLink))
{
    if (!m_config.driveDir.empty())
        Poco::File(m_config.driveDir).createDirectories();
    load();
}

Reply FastService::handle(const std::string& method, const std::string& target, const std::string& body)
{
    Poco::URI uri;
    try {
        uri = Poco::URI(target);
    } catch (const Poco::Exception&) {
        return error(400, "Malformed request target");
    }
    const std::string path = uri.getPath();
    if (path.compare(0, kApi.size(), kApi) != 0)
        return error(404, "Not found: " + path);
    const std::string route = path.substr(kApi.size());

    std::lock_guard<std::mutex> lock(m_mutex);
    const auto allow = [&](std::initializer_list<const char*> methods) {
        return std::any_of(methods.begin(), methods.end(), [&](const char* m) { return method == m; });
    };
    if (route == "about")
        return allow({"GET"}) ? about() : error(405, "Method not allowed");
    if (route.compare(0, 7, "plugin/") == 0)
        return allow({"GET"}) ? plugin(route.substr(7), uri.getRawQuery()) : error(405, "Method not allowed");
    // FAST's two collections: GET lists one, POST adds to it, DELETE removes one of its entries.
    struct Collection
    {
        std::string name;
        Reply (FastService::*list)() const;
        Reply (FastService::*add)(const std::string& body);
        Reply (FastService::*remove)(const std::string& id);
    };
    static const Collection kCollections[] = {
        {"vds", &FastService::listVolumes, &FastService::registerVolume, &FastService::unregisterVolume},
        {"file", &FastService::listFiles, &FastService::mount, &FastService::unmount},
    };
    for (const Collection& collection : kCollections) {
        const std::string entries = collection.name + "/";
        if (route == collection.name || route == entries) {
            if (method == "GET")
                return (this->*collection.list)();
            return method == "POST" ? (this->*collection.add)(body) : error(405, "Method not allowed");
        }
        if (route.compare(0, entries.size(), entries) == 0)
            return allow({"DELETE"}) ? (this->*collection.remove)(route.substr(entries.size()))
                                     : error(405, "Method not allowed");
    }
    return error(404, "Not found: " + path);
}

Reply FastService::about() const
{
    return json(200, object({{"version", m_config.version}}));
}

Reply FastService::plugin(const std::string& name, const std::string& query) const
{
    if (name != kPluginName || !m_config.pluginInstalled)
        return error(404, "Plug-in " + name + " is not installed");
    if (query.empty())
        return json(200, object({{"name", kPluginName}, {"version", std::string("1.0.0")}}));
    const std::string prefix = "vdsId=";
    if (query.compare(0, prefix.size(), prefix) != 0)
        return error(400, "Unknown query: " + query);
    std::string vdsId;
    try {
        Poco::URI::decode(query.substr(prefix.size()), vdsId);
    } catch (const Poco::SyntaxException&) {
        return error(400, "Malformed query: " + query);
    }
    const Volume* volume = findVolume(vdsId);
    if (!volume)
        return error(404, "No VDS with id " + vdsId);
    const auto extent = m_extents.find(volume->url);
    return json(200, pluginDescription(extent != m_extents.end() ? extent->second : VolumeExtent()));
}

Reply FastService::listVolumes() const
{
    Poco::JSON::Array::Ptr list = new Poco::JSON::Array;
    for (const Volume& volume : m_volumes)
        list->add(object({{"id", volume.id}, {"url", volume.url}}));
    return json(200, list);
}

Reply FastService::registerVolume(const std::string& body)
{
    std::string url;
    try {
        const auto request = Poco::JSON::Parser().parse(body).extract<Poco::JSON::Object::Ptr>();
        if (request->has("url") && request->get("url").isString())
            url = request->get("url").extract<std::string>();
    } catch (const Poco::Exception&) {
    }
    if (url.empty())
        return error(405, "Invalid parameters: expected { \"url\": \"...\" }");
    const bool known = std::any_of(m_volumes.begin(), m_volumes.end(),
                                   [&url](const Volume& volume) { return volume.url == url; });
    if (known)
        return error(409, "VDS already registered: " + url);
    m_volumes.push_back({newId(), url});
    save();
    return {200, m_volumes.back().id};
}

Reply FastService::unregisterVolume(const std::string& id)
{
    const auto volume = std::find_if(m_volumes.begin(), m_volumes.end(),
                                     [&id](const Volume& candidate) { return candidate.id == id; });
    if (volume == m_volumes.end())
        return error(404, "No VDS with id " + id);
    // Files still mounted from the volume go with it.
    const auto firstRemoved = std::stable_partition(m_files.begin(), m_files.end(),
                                                    [&id](const MountedFile& file) { return file.vdsId != id; });
    std::for_each(firstRemoved, m_files.end(), [this](const MountedFile& file) { removeFromDrive(file); });
    m_files.erase(firstRemoved, m_files.end());
    m_volumes.erase(volume);
    save();
    return {200, std::string()};
}

Reply FastService::listFiles() const
{
    Poco::JSON::Array::Ptr list = new Poco::JSON::Array;
    for (const MountedFile& file : m_files)
        list->add(object({{"id", file.id}, {"vdsId", file.vdsId}, {"path", file.path}}));
    return json(200, list);
}

Reply FastService::mount(const std::string& body)
{
    MountRequest request;
    try {
        request = readMountRequest(body);
    } catch (const std::invalid_argument& reason) {
        return error(400, std::string("Invalid mount parameters: ") + reason.what());
    }
    if (!m_config.pluginInstalled)
        return error(404, "Plug-in " + kPluginName + " is not installed");
    if (!findVolume(request.vdsId))
        return error(404, "No VDS with id " + request.vdsId);
    const bool taken = std::any_of(m_files.begin(), m_files.end(),
                                   [&request](const MountedFile& file) { return file.path == request.path; });
    if (taken || Poco::File(drivePath(request.path)).exists())
        return error(409, "File already exists: " + request.path);

    MountedFile file{newId(), request.vdsId, request.path};
    const std::string driveFile = drivePath(file.path);
    try {
        writeFile(driveFile, "VDS " + file.vdsId + "\n");
    } catch (const Poco::Exception& failure) {
        return error(500, "Unable to create " + file.path + ": " + failure.displayText());
    }
    m_files.push_back(file);
    save();

    if (!request.linkPath.empty() && m_scheduleLink)
        m_scheduleLink(Poco::Path(request.linkPath, file.path.substr(1) + kLinkExtension).toString(), driveFile);
    return {200, file.id};
}

Reply FastService::unmount(const std::string& id)
{
    const auto file = std::find_if(m_files.begin(), m_files.end(),
                                   [&id](const MountedFile& candidate) { return candidate.id == id; });
    if (file == m_files.end())
        return error(404, "No file with id " + id);
    removeFromDrive(*file);
    m_files.erase(file);
    save();
    return {200, std::string()};
}

void FastService::setPluginInstalled(bool installed)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_config.pluginInstalled = installed;
}

void FastService::setVersion(const std::string& version)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_config.version = version;
}

void FastService::setVolumeExtent(const std::string& url, const VolumeExtent& extent)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_extents[url] = extent;
}

std::vector<FastService::Volume> FastService::volumes() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_volumes;
}

std::vector<FastService::MountedFile> FastService::files() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_files;
}

const FastService::Volume* FastService::findVolume(const std::string& id) const
{
    const auto volume = std::find_if(m_volumes.begin(), m_volumes.end(),
                                     [&id](const Volume& candidate) { return candidate.id == id; });
    return volume == m_volumes.end() ? nullptr : &*volume;
}

std::string FastService::newId()
{
    std::string id = Poco::UUIDGenerator::defaultGenerator().createRandom().toString();
    id.erase(std::remove(id.begin(), id.end(), '-'), id.end());
    return id;
}

std::string FastService::drivePath(const std::string& path) const
{
    // FAST names a mounted file's drive entry with the host project's extension.
    return Poco::Path(m_config.driveDir.empty() ? "." : m_config.driveDir, path.substr(1) + kLinkExtension).toString();
}

void FastService::removeFromDrive(const MountedFile& file) const
{
    try {
        Poco::File(drivePath(file.path)).remove();
    } catch (const Poco::Exception&) {
        // Already gone from the drive; the registration is what counts.
    }
}

void FastService::load()
{
    if (m_config.stateFile.empty() || !Poco::File(m_config.stateFile).exists())
        return;
    Poco::FileInputStream in(m_config.stateFile);
    const auto state = Poco::JSON::Parser().parse(in).extract<Poco::JSON::Object::Ptr>();
    const auto volumes = state->getArray("volumes");
    for (unsigned i = 0; volumes && i < volumes->size(); ++i) {
        const auto volume = volumes->getObject(i);
        m_volumes.push_back({volume->getValue<std::string>("id"), volume->getValue<std::string>("url")});
    }
    const auto files = state->getArray("files");
    for (unsigned i = 0; files && i < files->size(); ++i) {
        const auto file = files->getObject(i);
        m_files.push_back({file->getValue<std::string>("id"), file->getValue<std::string>("vdsId"),
                           file->getValue<std::string>("path")});
    }
}

void FastService::save() const
{
    if (m_config.stateFile.empty())
        return;
    Poco::JSON::Object::Ptr state = new Poco::JSON::Object;
    state->set("volumes", Poco::JSON::Parser().parse(listVolumes().body));
    state->set("files", Poco::JSON::Parser().parse(listFiles().body));
    const std::string temporary = m_config.stateFile + ".tmp";
    writeFile(temporary, json(200, state).body);
    Poco::File(temporary).renameTo(m_config.stateFile);
}

} // namespace emulator
