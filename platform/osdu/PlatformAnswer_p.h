#pragma once

// Internal to the library: reading the platform's JSON answers.

#include <osdu/CurlSession.h>

#include <Poco/JSON/Object.h>

#include <string>

namespace osdu {

// "<what><status> N: <the platform's reason>", or why it could not be reached.
std::string failure(const std::string& what, const char* status, const CurlResponse& response);

// The answer's top-level object; throws std::runtime_error "<what>: ..." when there is none.
Poco::JSON::Object::Ptr answerObject(const std::string& what, const CurlResponse& response);

} // namespace osdu
