#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Poco {
namespace Dynamic {
class Var;
}
} // namespace Poco

namespace emulator {

// One answer of the OSDU emulator before it goes on the wire. Headers beyond the content type
// matter here: redirects carry Location, refusals carry WWW-Authenticate.
struct OsduReply
{
    int status = 200;
    std::string body;
    std::string contentType = "application/json";
    std::vector<std::pair<std::string, std::string>> headers;

    static OsduReply json(int status, const Poco::Dynamic::Var& value);
    // The platform services' error answer: {"code": status, "reason": ..., "message": ...}.
    static OsduReply error(int status, const std::string& reason, const std::string& message);
};

} // namespace emulator
