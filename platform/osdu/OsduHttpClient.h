#pragma once

#include <osdu/osdu_export.h>
#include <osdu/CurlSession.h>

#include <QObject>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace osdu {

class OsduAuthProvider;

// Talks JSON to one OSDU platform: bearer token from the provider, data-partition-id, TLS
// always verified, proxies from the environment. Requests from several threads run at once,
// each over a connection of its own that is kept alive for the next request.
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

private:
    CurlResponse send(bool post, const std::string& path, const std::string& body, const std::string& partition);
    // A session no other request is using, with its connection kept alive when it has one.
    std::unique_ptr<CurlSession> takeSession();
    void giveBack(std::unique_ptr<CurlSession> session);

    std::string m_baseUrl;
    std::shared_ptr<OsduAuthProvider> m_auth;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<CurlSession>> m_idleSessions;
};

} // namespace osdu
