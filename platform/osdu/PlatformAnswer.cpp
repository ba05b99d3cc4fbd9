#include "PlatformAnswer_p.h"

#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>

#include <stdexcept>

namespace osdu {

std::string failure(const std::string& what, const char* status, const CurlResponse& response)
{
    if (response.statusCode == 0)
        return what + ": the platform could not be reached: " + response.error;
    std::string reason;
    try {
        const Poco::JSON::Object::Ptr body =
            Poco::JSON::Parser().parse(response.text).extract<Poco::JSON::Object::Ptr>();
        // OSDU services put the detail in "message" and a category in "reason".
        reason = body->optValue<std::string>("message", std::string());
        if (reason.empty())
            reason = body->optValue<std::string>("reason", std::string());
    } catch (const Poco::Exception&) {
    }
    if (reason.empty())
        reason = "no reason given";
    return what + status + std::to_string(response.statusCode) + ": " + reason;
}

Poco::JSON::Object::Ptr answerObject(const std::string& what, const CurlResponse& response)
{
    try {
        Poco::JSON::Object::Ptr body = Poco::JSON::Parser().parse(response.text).extract<Poco::JSON::Object::Ptr>();
        if (body)
            return body;
    } catch (const Poco::Exception&) {
    }
    throw std::runtime_error(what + ": the platform's answer is not a JSON object");
}

} // namespace osdu
