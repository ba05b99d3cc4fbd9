#include "ServiceJson.h"

#include <Poco/JSON/Parser.h>

#include <cmath>
#include <sstream>
#include <stdexcept>

namespace emulator {

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

namespace {

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

} // namespace

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

namespace {

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

// The link path arrives with each Windows separator doubled.
std::string undoubleSeparators(std::string path)
{
    for (std::size_t at = path.find("\\\\"); at != std::string::npos; at = path.find("\\\\", at + 1))
        path.erase(at, 1);
    return path;
}

} // namespace

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
    request.linkPath = undoubleSeparators(textMember(parameters, "link_path"));
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

} // namespace emulator
