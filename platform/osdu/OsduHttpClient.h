#pragma once

#include <osdu/osdu_export.h>
#include <osdu/CurlSession.h>

#include <QObject>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace osdu {

class CurlMultiplexer;
class OsduAuthProvider;
class RequestGovernor;

// Talks JSON to one OSDU platform: bearer token from the provider, data-partition-id, TLS
// always verified, proxies from the environment. Requests from several threads run at once on
// shared connections kept alive for the next requests: over HTTPS one connection carries them
// all when the platform speaks HTTP/2, else at most 16 are opened. A request the
// platform turns away for now (429, 502, 503, 504) or whose connection is cut is tried again,
// up to four attempts, after the wait the platform asks for or a growing one.
class OSDU_EXPORT OsduHttpClient : public QObject
{
    Q_OBJECT

public:
    OsduHttpClient(const std::string& baseUrl, std::shared_ptr<OsduAuthProvider> auth, QObject* parent = nullptr);
    ~OsduHttpClient() override;

    const std::string& baseUrl() const { return m_baseUrl; }
    // path is appended to the base URL. Throws std::runtime_error when no token can be had;
    // transport failures and HTTP errors come back in the response (status 0 or the code).
    CurlResponse get(const std::string& path, const std::string& partition);
    CurlResponse post(const std::string& path, const std::string& jsonBody, const std::string& partition);
    // Governs the requests from now on (their number in flight, their deadline, cancelling);
    // null for none. Set it while no request is under way.
    void setGovernor(std::shared_ptr<RequestGovernor> governor);
    // Whether the platform's last answer came on a connection that carries many requests at
    // once (HTTP/2): many more may then be in flight than there are connections.
    bool multiplexing() const { return m_multiplexing.load(); }

private:
    CurlResponse send(bool post, const std::string& path, const std::string& body, const std::string& partition);
    // One attempt, renewing a refused token once.
    CurlResponse sendAuthorized(CurlSession& session, bool post, const std::string& path, const std::string& body,
                                const std::string& partition, const std::shared_ptr<RequestGovernor>& governor);
    // A session no other request is using, with its connection kept alive when it has one.
    std::unique_ptr<CurlSession> takeSession();
    void giveBack(std::unique_ptr<CurlSession> session);

    std::string m_baseUrl;
    std::shared_ptr<OsduAuthProvider> m_auth;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<CurlSession>> m_idleSessions;
    std::shared_ptr<RequestGovernor> m_governor;
    std::shared_ptr<CurlMultiplexer> m_multiplexer;
    std::atomic<bool> m_multiplexing{false};
};

} // namespace osdu
