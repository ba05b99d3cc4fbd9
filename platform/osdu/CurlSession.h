#pragma once

#include <osdu/osdu_export.h>

#include <atomic>
#include <string>
#include <utility>
#include <vector>

namespace osdu {

// What one transfer gave: the HTTP status (0 when the transfer failed), the body, and the
// transport's own words when it failed.
struct CurlResponse
{
    int statusCode = 0;
    std::string text;
    std::string error;
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
    // A transfer under way ends, as failed, within about a second of *cancelled turning true.
    // The flag must outlive the transfers; nullptr (the default) means none.
    void setCancelFlag(const std::atomic<bool>* cancelled);

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
    const std::atomic<bool>* m_cancelled = nullptr;
};

} // namespace osdu
