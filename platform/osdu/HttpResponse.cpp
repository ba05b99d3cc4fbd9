#include <osdu/HttpResponse.h>

#include <osdu/CurlSession.h>

namespace osdu {

void HttpResponse::setResponse(const CurlResponse& response)
{
    m_status = response.statusCode;
    m_message = response.text;
    m_transportError = response.error;
}

} // namespace osdu
