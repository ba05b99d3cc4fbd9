#include "OsduReply.h"

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Stringifier.h>

#include <sstream>

namespace emulator {

OsduReply OsduReply::json(int status, const Poco::Dynamic::Var& value)
{
    std::ostringstream out;
    Poco::JSON::Stringifier::stringify(value, out);
    return {status, out.str(), "application/json", {}};
}

OsduReply OsduReply::error(int status, const std::string& reason, const std::string& message)
{
    Poco::JSON::Object::Ptr body = new Poco::JSON::Object;
    body->set("code", status);
    body->set("reason", reason);
    body->set("message", message);
    return json(status, body);
}

} // namespace emulator
