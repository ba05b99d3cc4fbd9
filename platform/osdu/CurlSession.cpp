#include <osdu/CurlSession.h>

#include "CurlMultiplexer_p.h"
#include "NetworkRoute.h"

#include <curl/curl.h>

#include <mutex>
#include <stdexcept>

namespace osdu {

namespace {

void initialiseCurlOnce()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

std::size_t appendToString(char* data, std::size_t size, std::size_t count, void* target)
{
    static_cast<std::string*>(target)->append(data, size * count);
    return size * count;
}

std::size_t keepRetryAfter(char* data, std::size_t size, std::size_t count, void* target)
{
    const std::string line(data, size * count);
    const std::string name = "retry-after:";
    if (line.size() > name.size()) {
        std::string start = line.substr(0, name.size());
        for (char& c : start)
            c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        if (start == name) {
            const std::size_t first = line.find_first_not_of(" \t", name.size());
            const std::size_t last = line.find_last_not_of(" \t\r\n");
            *static_cast<std::string*>(target) = first == std::string::npos || last < first
                                                     ? std::string()
                                                     : line.substr(first, last - first + 1);
        }
    }
    return size * count;
}

int askAbort(void* abort, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    return (*static_cast<const std::function<bool()>*>(abort))() ? 1 : 0;
}

bool cutOff(CURLcode result)
{
    return result == CURLE_RECV_ERROR || result == CURLE_SEND_ERROR || result == CURLE_GOT_NOTHING
           || result == CURLE_PARTIAL_FILE || result == CURLE_HTTP2 || result == CURLE_HTTP2_STREAM;
}

CURL* asCurl(void* handle)
{
    return static_cast<CURL*>(handle);
}

} // namespace

CurlSession::CurlSession()
{
    initialiseCurlOnce();
    m_handle = curl_easy_init();
    if (!m_handle)
        throw std::runtime_error("Unable to create an HTTP session");
}

CurlSession::~CurlSession()
{
    curl_easy_cleanup(asCurl(m_handle));
}

void CurlSession::setUrl(const std::string& url)
{
    m_url = url;
}

void CurlSession::setBody(const std::string& body)
{
    m_body = body;
}

void CurlSession::setHeaders(std::vector<Header> headers)
{
    m_headers = std::move(headers);
}

void CurlSession::setTimeoutMs(long timeoutMs)
{
    m_timeoutMs = timeoutMs;
}

void CurlSession::setAbortCheck(std::function<bool()> abort)
{
    m_abort = std::move(abort);
}

void CurlSession::setMultiplexer(std::shared_ptr<CurlMultiplexer> multiplexer)
{
    m_multiplexer = std::move(multiplexer);
}

CurlResponse CurlSession::get()
{
    return perform("GET");
}

CurlResponse CurlSession::post()
{
    return perform("POST");
}

CurlResponse CurlSession::del()
{
    return perform("DELETE");
}

CurlResponse CurlSession::perform(const char* method)
{
    CURL* curl = asCurl(m_handle);
    const std::string verb = method;
    CurlResponse response;
    char errorBuffer[CURL_ERROR_SIZE] = {};

    curl_slist* headerList = nullptr;
    for (const Header& header : m_headers)
        headerList = curl_slist_append(headerList, (header.first + ": " + header.second).c_str());

    curl_easy_setopt(curl, CURLOPT_URL, m_url.c_str());
    applyNetworkRoute(curl, m_url);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errorBuffer);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &appendToString);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &response.text);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headerList);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, m_timeoutMs);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, &keepRetryAfter);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, &response.retryAfter);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, m_abort ? 0L : 1L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, m_abort ? &askAbort : nullptr);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, m_abort ? &m_abort : nullptr);
    if (verb == "POST") {
        curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, nullptr);
        curl_easy_setopt(curl, CURLOPT_POST, 1L);
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, m_body.c_str());
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_body.size()));
    } else if (verb == "DELETE") {
        curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
        curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, "DELETE");
    } else {
        curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, nullptr);
        curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
    }

    if (m_multiplexer) {
        // Rather a stream on a connection that is being set up than a connection of its own.
        curl_easy_setopt(curl, CURLOPT_PIPEWAIT, 1L);
        curl_easy_setopt(curl, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    }
    const CURLcode result = m_multiplexer ? static_cast<CURLcode>(m_multiplexer->perform(curl))
                                          : curl_easy_perform(curl);
    if (result == CURLE_OK) {
        long status = 0;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        response.statusCode = static_cast<int>(status);
        long version = 0;
        curl_easy_getinfo(curl, CURLINFO_HTTP_VERSION, &version);
        response.multiplexed = version >= CURL_HTTP_VERSION_2_0;
    } else {
        // Like a failed transfer in any HTTP client: no status, no partial body.
        response.statusCode = 0;
        response.text.clear();
        response.retryAfter.clear();
        response.connectionCut = cutOff(result);
        response.error = errorBuffer[0] != '\0' ? errorBuffer : curl_easy_strerror(result);
    }

    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, nullptr);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, nullptr);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, nullptr);
    curl_slist_free_all(headerList);
    return response;
}

} // namespace osdu
