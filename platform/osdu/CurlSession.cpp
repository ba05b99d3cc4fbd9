#include <osdu/CurlSession.h>

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

int abortWhenCancelled(void* cancelled, curl_off_t /*downloadTotal*/, curl_off_t /*downloaded*/,
                       curl_off_t /*uploadTotal*/, curl_off_t /*uploaded*/)
{
    return static_cast<const std::atomic<bool>*>(cancelled)->load() ? 1 : 0;
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

void CurlSession::setCancelFlag(const std::atomic<bool>* cancelled)
{
    m_cancelled = cancelled;
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
    // libcurl calls the progress function at least once a second, also while waiting for an answer.
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, m_cancelled ? 0L : 1L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, m_cancelled ? &abortWhenCancelled : nullptr);
    // libcurl hands its data on as void*; the flag is only read.
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, const_cast<std::atomic<bool>*>(m_cancelled));
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

    const CURLcode result = curl_easy_perform(curl);
    if (result == CURLE_OK) {
        long status = 0;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        response.statusCode = static_cast<int>(status);
    } else {
        // Like a failed transfer in any HTTP client: no status, no partial body.
        response.statusCode = 0;
        response.text.clear();
        response.error = errorBuffer[0] != '\0' ? errorBuffer : curl_easy_strerror(result);
    }

    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, nullptr);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, nullptr);
    curl_slist_free_all(headerList);
    return response;
}

} // namespace osdu
