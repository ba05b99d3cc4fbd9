#include <osdu/OsduHttpClient.h>

#include <osdu/OsduAuthProvider.h>
#include <osdu/RequestGovernor.h>

#include "CurlMultiplexer_p.h"
#include "TransportSecurity_p.h"

// On Windows curl.h includes windows.h, whose min and max macros would swallow std::min and
// std::max below.
#if defined(_WIN32) && !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <curl/curl.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <random>
#include <stdexcept>
#include <thread>

namespace osdu {

namespace {

// A request that has not finished in this time will not: better an error than a hang.
constexpr long RequestTimeoutMs = 2L * 60 * 1000;
constexpr int kMostAttempts = 4;
// However long a busy platform asks us to wait: a person is waiting for the answer.
constexpr std::chrono::milliseconds kLongestWait{30000};
constexpr std::chrono::milliseconds kFirstBackoff{250};

bool worthRetrying(const CurlResponse& response)
{
    const int status = response.statusCode;
    return status == 429 || status == 502 || status == 503 || status == 504 || (status == 0 && response.connectionCut);
}

// What Retry-After asks for, delta seconds or an HTTP date; negative when it says nothing usable.
std::chrono::milliseconds askedWait(const std::string& retryAfter)
{
    if (retryAfter.empty())
        return std::chrono::milliseconds(-1);
    if (std::all_of(retryAfter.begin(), retryAfter.end(),
                    [](char c) { return std::isdigit(static_cast<unsigned char>(c)); }))
        return retryAfter.size() > 6 ? kLongestWait : std::chrono::seconds(std::stol(retryAfter));
    const time_t when = curl_getdate(retryAfter.c_str(), nullptr);
    if (when == -1)
        return std::chrono::milliseconds(-1);
    // To the millisecond: time() reads a coarse clock that may still tell the second before, and
    // a wait counted from it can be a second too long.
    const auto left = std::chrono::system_clock::from_time_t(when) - std::chrono::system_clock::now();
    return std::max(std::chrono::milliseconds(0), std::chrono::duration_cast<std::chrono::milliseconds>(left));
}

// Exponential, with jitter so that requests turned away together do not come back together.
std::chrono::milliseconds backoff(int failedAttempt)
{
    thread_local std::mt19937 random{std::random_device{}()};
    const long long ceiling = kFirstBackoff.count() << (failedAttempt - 1);
    return std::chrono::milliseconds(std::uniform_int_distribution<long long>(ceiling / 2, ceiling)(random));
}

std::chrono::milliseconds retryWait(const CurlResponse& response, int failedAttempt)
{
    const std::chrono::milliseconds asked = askedWait(response.retryAfter);
    return std::min(asked.count() >= 0 ? asked : backoff(failedAttempt), kLongestWait);
}

} // namespace

OsduHttpClient::OsduHttpClient(const std::string& baseUrl, std::shared_ptr<OsduAuthProvider> auth, QObject* parent)
    : QObject(parent), m_baseUrl(baseUrl), m_auth(std::move(auth))
{
    if (!m_auth)
        throw std::invalid_argument("An OSDU client needs an authorization provider");
    while (!m_baseUrl.empty() && m_baseUrl.back() == '/')
        m_baseUrl.pop_back();
    // HTTP/2 is negotiated over TLS only. Plain HTTP (this machine's loopback) keeps a
    // connection per thread, which costs less than handing each transfer to another thread.
    if (m_baseUrl.compare(0, 8, "https://") == 0)
        m_multiplexer = std::make_shared<CurlMultiplexer>();
}

OsduHttpClient::~OsduHttpClient() = default;

CurlResponse OsduHttpClient::get(const std::string& path, const std::string& partition)
{
    return send(false, path, {}, partition);
}

CurlResponse OsduHttpClient::post(const std::string& path, const std::string& jsonBody, const std::string& partition)
{
    return send(true, path, jsonBody, partition);
}

void OsduHttpClient::setGovernor(std::shared_ptr<RequestGovernor> governor)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_governor = std::move(governor);
}

CurlResponse OsduHttpClient::send(bool post, const std::string& path, const std::string& body,
                                  const std::string& partition)
{
    // Checked before the token is asked for: nothing goes out, not even a name lookup.
    if (!usesSafeTransport(m_baseUrl))
        throw std::runtime_error(unsafeTransportMessage("OSDU_BASE_URL"));
    std::shared_ptr<RequestGovernor> governor;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        governor = m_governor;
    }
    std::unique_ptr<CurlSession> session = takeSession();
    CurlResponse response;
    try {
        std::uint64_t ticket = governor ? governor->enter() : 1;
        for (int attempt = 1;; ++attempt) {
            if (ticket == 0) {
                response = CurlResponse();
                response.error = governor->cancelled() ? "the search was cancelled" : "the search took too long";
                break;
            }
            try {
                response = sendAuthorized(*session, post, path, body, partition, governor);
            } catch (...) {
                if (governor)
                    governor->leave(ticket, 0);
                throw;
            }
            const bool retry = worthRetrying(response) && attempt < kMostAttempts;
            const std::chrono::milliseconds wait = retry ? retryWait(response, attempt) : std::chrono::milliseconds(0);
            if (!retry || (governor && RequestGovernor::Clock::now() + wait > governor->deadline())) {
                if (governor)
                    governor->leave(ticket, response.statusCode);
                break;
            }
            if (governor && governor->onRetry)
                governor->onRetry({path, attempt, kMostAttempts, response.statusCode, static_cast<long>(wait.count())});
            if (!governor) {
                std::this_thread::sleep_for(wait);
                continue;
            }
            // Asked back at once, the request keeps its place rather than queue behind the
            // requests that have not been tried yet.
            if (wait.count() == 0) {
                ticket = governor->again(ticket, response.statusCode);
                continue;
            }
            governor->leave(ticket, response.statusCode);
            if (!governor->pause(wait))
                break;
            ticket = governor->enter();
        }
    } catch (...) {
        giveBack(std::move(session));
        throw;
    }
    giveBack(std::move(session));
    return response;
}

CurlResponse OsduHttpClient::sendAuthorized(CurlSession& session, bool post, const std::string& path,
                                            const std::string& body, const std::string& partition,
                                            const std::shared_ptr<RequestGovernor>& governor)
{
    long timeoutMs = RequestTimeoutMs;
    if (governor) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(governor->deadline()
                                                                                - RequestGovernor::Clock::now());
        timeoutMs = std::max(1L, std::min(timeoutMs, static_cast<long>(left.count())));
        session.setAbortCheck([governor] { return governor->cancelled(); });
    } else {
        session.setAbortCheck({});
    }
    CurlResponse response;
    // A token can be revoked or cut short before its stated expiry: one renewal and retry.
    for (int attempt = 0; attempt < 2; ++attempt) {
        const std::string token = m_auth->accessToken();
        session.setUrl(m_baseUrl + path);
        session.setHeaders({{"Authorization", "Bearer " + token},
                            {"data-partition-id", partition},
                            {"Content-Type", "application/json"},
                            {"Accept", "application/json"}});
        session.setBody(body);
        session.setTimeoutMs(timeoutMs);
        response = post ? session.post() : session.get();
        if (response.statusCode != 0)
            m_multiplexing = response.multiplexed;
        if (response.statusCode != 401)
            return response;
        if (attempt == 0)
            m_auth->discardAccessToken(token);
    }
    // Turned away with a token just renewed: no renewal will help.
    m_auth->endSession();
    return response;
}

std::unique_ptr<CurlSession> OsduHttpClient::takeSession()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_idleSessions.empty()) {
            std::unique_ptr<CurlSession> session = std::move(m_idleSessions.back());
            m_idleSessions.pop_back();
            return session;
        }
    }
    auto session = std::make_unique<CurlSession>();
    session->setMultiplexer(m_multiplexer);
    return session;
}

void OsduHttpClient::giveBack(std::unique_ptr<CurlSession> session)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_idleSessions.push_back(std::move(session));
}

} // namespace osdu
