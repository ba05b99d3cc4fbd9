#include "FastService.h"

#include <Poco/File.h>
#include <Poco/FileStream.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>
#include <Poco/Path.h>
#include <Poco/StreamCopier.h>
#include <Poco/URI.h>
#include <Poco/UUIDGenerator.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

namespace emulator {

namespace {

const std::string kApi = "/api/v2/";
const std::string kPluginName = "Korvane";

Reply json(int status, const Poco::Dynamic::Var& value)
{
    std::ostringstream out;
    Poco::JSON::Stringifier::stringify(value, out);
    return {status, out.str()};
}

Reply error(int status, const std::string& message)
{
    Poco::JSON::Object::Ptr body = new Poco::JSON::Object;
    body->set("error", message);
    return json(status, body);
}

// Bounds go out as integers when they are whole, as FAST's description has them.
Poco::Dynamic::Var number(double value)
{
    if (std::floor(value) == value && std::fabs(value) < 1e15)
        return static_cast<Poco::Int64>(value);
    return value;
}

Poco::JSON::Object::Ptr describedBound(const char* type, double value)
{
    Poco::JSON::Object::Ptr bound = new Poco::JSON::Object;
    bound->set("type", std::string(type));
    bound->set("default", number(value));
    return bound;
}

Poco::JSON::Object::Ptr object(std::initializer_list<std::pair<std::string, Poco::Dynamic::Var>> members)
{
    Poco::JSON::Object::Ptr result = new Poco::JSON::Object;
    for (const auto& member : members)
        result->set(member.first, member.second);
    return result;
}

Poco::JSON::Object::Ptr pluginDescription(const VolumeExtent& extent)
{
    Poco::JSON::Object::Ptr dimensions = new Poco::JSON::Object;
    for (int dim = 0; dim < 3; ++dim) {
        const char* type = dim == 2 ? "number" : "integer";
        dimensions->set("dim" + std::to_string(dim),
                        object({{"type", std::string("object")},
                                {"properties", object({{"min", describedBound(type, extent.min[dim])},
                                                       {"max", describedBound(type, extent.max[dim])}})}}));
    }
    return object({{"name", kPluginName},
                   {"type", std::string("object")},
                   {"properties",
                    object({{"subvolume", object({{"type", std::string("object")}, {"properties", dimensions}})}})}});
}

// Throws std::invalid_argument with the reason when the mount body is not what FAST takes.
struct MountRequest
{
    std::string vdsId;
    std::string path;
    std::string linkPath;
};

Poco::JSON::Object::Ptr member(const Poco::JSON::Object::Ptr& parent, const std::string& key)
{
    Poco::JSON::Object::Ptr child = parent->getObject(key);
    if (!child)
        throw std::invalid_argument("\"" + key + "\" must be an object");
    return child;
}

std::string textMember(const Poco::JSON::Object::Ptr& parent, const std::string& key)
{
    if (!parent->has(key) || !parent->get(key).isString())
        throw std::invalid_argument("\"" + key + "\" must be a string");
    return parent->get(key).extract<std::string>();
}

Poco::Int64 integerMember(const Poco::JSON::Object::Ptr& parent, const std::string& key)
{
    if (!parent->has(key) || !parent->get(key).isInteger())
        throw std::invalid_argument("\"" + key + "\" must be an integer");
    // The parser keeps integers up to 2^64 - 1, which do not fit.
    try {
        return parent->get(key).convert<Poco::Int64>();
    } catch (const Poco::RangeException&) {
        throw std::invalid_argument("\"" + key + "\" is out of range");
    }
}

MountRequest readMountRequest(const std::string& body)
{
    Poco::JSON::Object::Ptr root;
    try {
        root = Poco::JSON::Parser().parse(body).extract<Poco::JSON::Object::Ptr>();
    } catch (const Poco::Exception&) {
        throw std::invalid_argument("the body is not a JSON object");
    }
    MountRequest request;
    request.vdsId = textMember(root, "vdsId");
    request.path = textMember(root, "path");
    if (request.path.size() < 2 || request.path[0] != '/' || request.path.find_first_of("/\\", 1) != std::string::npos
        || request.path == "/." || request.path == "/..")
        throw std::invalid_argument("\"path\" must be \"/\" followed by a file name");
    if (textMember(root, "plugin") != kPluginName)
        throw std::invalid_argument("\"plugin\" must be \"" + kPluginName + "\"");

    const Poco::JSON::Object::Ptr parameters = member(root, "parameters");
    request.linkPath = textMember(parameters, "link_path");
    textMember(parameters, "shortcut_base_path");
    integerMember(parameters, "vds-compression-tolerance");
    const Poco::JSON::Object::Ptr subvolume = member(parameters, "subvolume");
    for (const char* dim : {"dim0", "dim1", "dim2"}) {
        const Poco::JSON::Object::Ptr bounds = member(subvolume, dim);
        const Poco::Int64 min = integerMember(bounds, "min");
        const Poco::Int64 max = integerMember(bounds, "max");
        if (min < 0 || max < min)
            throw std::invalid_argument(std::string("\"") + dim + "\" must have 0 <= min <= max");
    }
    return request;
}

// The link path arrives with each Windows separator doubled.
std::string undoubleSeparators(std::string path)
{
    for (std::size_t at = path.find("\\\\"); at != std::string::npos; at = path.find("\\\\", at + 1))
        path.erase(at, 1);
    return path;
}

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
    if (route == "vds/" || route == "vds") {
        if (method == "GET")
            return listVolumes();
        return method == "POST" ? registerVolume(body) : error(405, "Method not allowed");
    }
    if (route.compare(0, 4, "vds/") == 0)
        return allow({"DELETE"}) ? unregisterVolume(route.substr(4)) : error(405, "Method not allowed");
    if (route == "file/" || route == "file") {
        if (method == "GET")
            return listFiles();
        return method == "POST" ? mount(body) : error(405, "Method not allowed");
    }
    if (route.compare(0, 5, "file/") == 0)
        return allow({"DELETE"}) ? unmount(route.substr(5)) : error(405, "Method not allowed");
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

    const std::string linkFolder = undoubleSeparators(request.linkPath);
    if (!linkFolder.empty() && m_scheduleLink)
        m_scheduleLink(Poco::Path(linkFolder, file.path.substr(1) + ".kv").toString(), driveFile);
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
    return Poco::Path(m_config.driveDir.empty() ? "." : m_config.driveDir, path.substr(1)).toString();
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
