#include <osdu/OsduHttpClient.h>

#include <osdu/OsduAuthProvider.h>

#include "TransportSecurity_p.h"

#include <stdexcept>

namespace osdu {

namespace {

// A request that has not finished in this time will not: better an error than a hang.
constexpr long RequestTimeoutMs = 2L * 60 * 1000;

} // namespace

OsduHttpClient::OsduHttpClient(const std::string& baseUrl, std::shared_ptr<OsduAuthProvider> auth, QObject* parent)
    : QObject(parent), m_baseUrl(baseUrl), m_auth(std::move(auth))
{
    if (!m_auth)
        throw std::invalid_argument("An OSDU client needs an authorization provider");
    while (!m_baseUrl.empty() && m_baseUrl.back() == '/')
        m_baseUrl.pop_back();
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

CurlResponse OsduHttpClient::send(bool post, const std::string& path, const std::string& body,
                                  const std::string& partition)
{
    // Checked before the token is asked for: nothing goes out, not even a name lookup.
    if (!usesSafeTransport(m_baseUrl))
        throw std::runtime_error(unsafeTransportMessage("OSDU_BASE_URL"));
    std::unique_ptr<CurlSession> session = takeSession();
    CurlResponse response;
    try {
        // A token can be revoked or cut short before its stated expiry: one renewal and retry.
        for (int attempt = 0; attempt < 2; ++attempt) {
            const std::string token = m_auth->accessToken();
            session->setUrl(m_baseUrl + path);
            session->setHeaders({{"Authorization", "Bearer " + token},
                                 {"data-partition-id", partition},
                                 {"Content-Type", "application/json"},
                                 {"Accept", "application/json"}});
            session->setBody(body);
            session->setTimeoutMs(RequestTimeoutMs);
            response = post ? session->post() : session->get();
            if (response.statusCode != 401) {
                giveBack(std::move(session));
                return response;
            }
            if (attempt == 0)
                m_auth->discardAccessToken(token);
        }
    } catch (...) {
        giveBack(std::move(session));
        throw;
    }
    giveBack(std::move(session));
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
    return std::make_unique<CurlSession>();
}

void OsduHttpClient::giveBack(std::unique_ptr<CurlSession> session)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_idleSessions.push_back(std::move(session));
}

} // namespace osdu
