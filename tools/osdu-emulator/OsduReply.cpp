#include "OsduReply.h"

#include <Poco/JSON/Stringifier.h>

#include <sstream>

namespace emulator {

OsduReply OsduReply::json(int status, const Poco::Dynamic::Var& value)
{
    std::ostringstream out;
    Poco::JSON::Stringifier::stringify(value, out);
    return {status, out.str(), "application/json", {}};
}

} // namespace emulator
