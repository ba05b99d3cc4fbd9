#include <fast/client/VdsDescriptorParser.h>

#include "ListingReader_p.h"
#include "VdsInfoLookup_p.h"

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/JSONException.h>
#include <Poco/JSON/Parser.h>

#include <sstream>
#include <unordered_map>

namespace fast {

namespace {

bool isAbsentListing(const std::string& json)
{
    return json.empty() || json == "null";
}

// The parser reports a number it cannot represent with Poco's generic syntax exception; callers
// tell bad JSON by the JSON one alone.
Poco::Dynamic::Var parseJson(const std::string& json)
{
    try {
        return Poco::JSON::Parser().parse(json);
    } catch (const Poco::SyntaxException& failure) {
        throw Poco::JSON::JSONException(failure.message());
    }
}

// The field's text as the document's value converts to it: a JSON null cannot be.
const std::string& text(const ListingField& field)
{
    if (field.state == ListingField::Null)
        Poco::Dynamic::Var().convert<std::string>();
    return field.text;
}

// An element that is not an object was read through a null object pointer.
void requireObject(const ListingEntry& entry)
{
    if (!entry.isObject)
        throw Poco::NullPointerException();
}

std::vector<VdsInfo> readVolumes(const std::string& vdsListJson)
{
    std::vector<VdsInfo> infos;
    readListing(vdsListJson, {"id", "url"}, [&infos](const ListingEntry& entry) {
        requireObject(entry);
        VdsInfo info;
        info.vdsId = text(entry.fields[0]);
        info.url = text(entry.fields[1]);
        infos.push_back(std::move(info));
    });
    return infos;
}

// First record per id, as findVdsInfo would find it, without a scan per file.
std::unordered_map<std::string, std::size_t> indexById(const std::vector<VdsInfo>& infos)
{
    std::unordered_map<std::string, std::size_t> index;
    index.reserve(infos.size());
    for (std::size_t i = 0; i < infos.size(); ++i)
        index.emplace(infos[i].vdsId, i);
    return index;
}

// Files of no listed volume, or without an id or a path, are skipped.
void attachFiles(std::vector<VdsInfo>& infos, const std::string& fileListJson)
{
    const auto index = indexById(infos);
    readListing(fileListJson, {"vdsId", "id", "path"}, [&infos, &index](const ListingEntry& entry) {
        requireObject(entry);
        const ListingField& vdsId = entry.fields[0];
        if (vdsId.state == ListingField::Absent)
            return;
        const auto owner = index.find(text(vdsId));
        if (owner == index.end() || entry.fields[1].state == ListingField::Absent)
            return;
        VdsFile file;
        file.fileId = text(entry.fields[1]);
        if (entry.fields[2].state == ListingField::Absent)
            return;
        const std::string& path = text(entry.fields[2]);
        if (!path.empty())
            file.fileName = path.substr(1);
        infos[owner->second].files.push_back(std::move(file));
    });
}

} // namespace

bool isFastId(const std::string& text)
{
    constexpr std::size_t kLongestId = 256;
    if (text.empty() || text.size() > kLongestId || text == "null" || text == "true" || text == "false")
        return false;
    return std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_'
               || c == '.' || c == ':' || c == '~';
    });
}

std::vector<VdsInfo> parseVdsInfos(const std::string& vdsListJson, const std::string& fileListJson)
{
    if (isAbsentListing(vdsListJson))
        return {};
    std::vector<VdsInfo> infos = readVolumes(vdsListJson);
    if (!isAbsentListing(fileListJson))
        attachFiles(infos, fileListJson);
    return infos;
}

std::vector<VdsInfo>::iterator findVdsInfo(std::vector<VdsInfo>::iterator first, std::vector<VdsInfo>::iterator last,
                                           const Poco::JSON::Object::Ptr& fileEntry)
{
    const std::string vdsId = fileEntry->get("vdsId").convert<std::string>();
    for (; first != last; ++first) {
        if (first->vdsId == vdsId)
            return first;
    }
    return last;
}

std::string jsonValue(const std::string& key, const std::string& json)
{
    if (json.empty())
        return {};
    const auto object = parseJson(json).extract<Poco::JSON::Object::Ptr>();
    if (!object->has(key))
        return {};
    const Poco::Dynamic::Var value = object->get(key);
    // Nested values come back as compact JSON text, so that they can be read again.
    if (value.type() == typeid(Poco::JSON::Object::Ptr)) {
        std::ostringstream text;
        value.extract<Poco::JSON::Object::Ptr>()->stringify(text);
        return text.str();
    }
    if (value.type() == typeid(Poco::JSON::Array::Ptr)) {
        std::ostringstream text;
        value.extract<Poco::JSON::Array::Ptr>()->stringify(text);
        return text.str();
    }
    return value.convert<std::string>();
}

SubvolumeRange parseSubvolumeRange(const std::string& pluginJson)
{
    const std::string subvolume = jsonValue("properties", jsonValue("subvolume", jsonValue("properties", pluginJson)));
    const auto bound = [&subvolume](const char* dimension, const char* which) {
        const std::string limits = jsonValue("properties", jsonValue(dimension, subvolume));
        return jsonValue("default", jsonValue(which, limits));
    };
    SubvolumeRange range;
    range.dim0Min = bound("dim0", "min");
    range.dim0Max = bound("dim0", "max");
    range.dim1Min = bound("dim1", "min");
    range.dim1Max = bound("dim1", "max");
    range.dim2Min = bound("dim2", "min");
    range.dim2Max = bound("dim2", "max");
    return range;
}

} // namespace fast
