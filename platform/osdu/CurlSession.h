#pragma once

#include <osdu/osdu_export.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace osdu {

class CurlMultiplexer;

// What one transfer gave: the HTTP status (0 when the transfer failed), the body, and the
// transport's own words when it failed.
struct CurlResponse
{
    int statusCode = 0;
    std::string text;
    std::string error;
    // The answer's Retry-After header, as sent; empty when there was none.
    std::string retryAfter;
    // The connection broke under the transfer (reset, nothing or half an answer received), as
    // against a service that cannot be reached at all.
    bool connectionCut = false;
    // The answer came over HTTP/2 or later, on a connection that carries many requests at once.
    bool multiplexed = false;
};

// The tree's one HTTP transport, a thin RAII layer over one libcurl easy handle. By default a
// request carries no header and no time-out, and takes the system's proxy and certificates
// (applyNetworkRoute). A session may be reused for several requests: libcurl then keeps the
// connection alive between them. Not for use by two threads at once.
class OSDU_EXPORT CurlSession
{
public:
    using Header = std::pair<std::string, std::string>;

    CurlSession();
    ~CurlSession();
    CurlSession(const CurlSession&) = delete;
    CurlSession& operator=(const CurlSession&) = delete;

    void setUrl(const std::string& url);
    void setBody(const std::string& body);
    void setHeaders(std::vector<Header> headers);
    // 0 means no limit, the default.
    void setTimeoutMs(long timeoutMs);
    // Asked about once a second during a transfer, and more often while data flows: true
    // abandons the transfer, which then fails with status 0. Empty, the default, never does.
    void setAbortCheck(std::function<bool()> abort);
    // The library's own: transfers go through the multiplexer, on connections it shares.
    void setMultiplexer(std::shared_ptr<CurlMultiplexer> multiplexer);

    CurlResponse get();
    CurlResponse post();
    CurlResponse del();

private:
    CurlResponse perform(const char* method);

    void* m_handle;
    std::string m_url;
    std::string m_body;
    std::vector<Header> m_headers;
    long m_timeoutMs = 0;
    std::function<bool()> m_abort;
    std::shared_ptr<CurlMultiplexer> m_multiplexer;
};

} // namespace osdu
