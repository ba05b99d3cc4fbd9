// FAST's volume listing, a line "--", then its file listing, as parseVdsInfos gets them.
//
// parseVdsInfos reads the listings as they are parsed, without their documents. Reading them
// from the parsed documents is the plain way, and what it must equal: the same records, or the
// same exception with the same message. Any difference aborts.

#include "FuzzInput.h"

#include <fast/client/VdsDescriptorParser.h>

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/JSONException.h>
#include <Poco/JSON/Parser.h>

#include <cstdlib>
#include <functional>

namespace {

Poco::JSON::Array::Ptr parseArray(const std::string& json)
{
    try {
        return Poco::JSON::Parser().parse(json).extract<Poco::JSON::Array::Ptr>();
    } catch (const Poco::SyntaxException& failure) {
        throw Poco::JSON::JSONException(failure.message());
    }
}

bool readText(const Poco::JSON::Object& object, const std::string& key, std::string& text)
{
    if (!object.has(key))
        return false;
    text = object.get(key).convert<std::string>();
    return true;
}

std::vector<fast::VdsInfo> fromDocuments(const std::string& volumes, const std::string& files)
{
    std::vector<fast::VdsInfo> infos;
    if (volumes.empty() || volumes == "null")
        return infos;
    const Poco::JSON::Array::Ptr volumeList = parseArray(volumes);
    for (std::size_t i = 0; i < volumeList->size(); ++i) {
        const Poco::JSON::Object::Ptr entry = volumeList->getObject(static_cast<unsigned>(i));
        fast::VdsInfo info;
        readText(*entry, "id", info.vdsId);
        readText(*entry, "url", info.url);
        infos.push_back(std::move(info));
    }
    if (files.empty() || files == "null")
        return infos;
    const Poco::JSON::Array::Ptr fileList = parseArray(files);
    for (std::size_t i = 0; i < fileList->size(); ++i) {
        const Poco::JSON::Object::Ptr entry = fileList->getObject(static_cast<unsigned>(i));
        std::string vdsId;
        if (!readText(*entry, "vdsId", vdsId))
            continue;
        auto owner = infos.begin();
        while (owner != infos.end() && owner->vdsId != vdsId)
            ++owner;
        fast::VdsFile file;
        if (owner == infos.end() || !readText(*entry, "id", file.fileId) || !entry->has("path"))
            continue;
        const std::string path = entry->get("path").convert<std::string>();
        if (!path.empty())
            file.fileName = path.substr(1);
        owner->files.push_back(std::move(file));
    }
    return infos;
}

// The records as text, or the exception's class and message.
std::string outcome(const std::function<std::vector<fast::VdsInfo>()>& read)
{
    try {
        std::string text;
        for (const fast::VdsInfo& info : read()) {
            text += info.vdsId + '\0' + info.url + '\0';
            for (const fast::VdsFile& file : info.files)
                text += file.fileId + '\0' + file.fileName + '\0';
            text += '\n';
        }
        return text;
    } catch (const Poco::Exception& failure) {
        return std::string(failure.className()) + ": " + failure.message();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::pair<std::string, std::string> listings = fuzz::splitAtLine(fuzz::text(data, size), "--");
    const std::string& volumes = listings.first;
    const std::string& files = listings.second;
    const std::string streamed = outcome([&] { return fast::parseVdsInfos(volumes, files); });
    const std::string fromDocument = outcome([&] { return fromDocuments(volumes, files); });
    if (streamed != fromDocument)
        std::abort();
    return 0;
}
