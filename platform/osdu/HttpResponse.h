#pragma once

#include <osdu/osdu_export.h>

#include <string>

namespace osdu {

struct CurlResponse;

// An HTTP answer as the library's callers see it: the status (0 when the service could not be
// reached) and the body text.
class OSDU_EXPORT HttpResponse
{
public:
    HttpResponse() = default;

    void setResponse(const CurlResponse& response);

    int getResponse() const { return m_status; }
    const std::string& getMessage() const { return m_message; }
    // Why the transfer failed, in the transport's words; empty when an answer came.
    const std::string& getTransportError() const { return m_transportError; }

private:
    int m_status = 0;
    std::string m_message;
    std::string m_transportError;
};

} // namespace osdu
