#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

class TestSettings;

// A client registered at the OidcServer: a native application with a secret, which it sends as
// authMethod says ("client_secret_basic" or "client_secret_post").
struct OidcClient
{
    QString id;
    QString secret;
    QString authMethod;
};

// The third-party OpenID Connect provider of tests/oidc-server, run by Node.js on a free loopback
// port for the life of this object. Its client may redirect to http://127.0.0.1/callback.
class OidcServer
{
public:
    OidcServer(int accessTokenSeconds, const OidcClient& client);
    ~OidcServer();
    OidcServer(const OidcServer&) = delete;
    OidcServer& operator=(const OidcServer&) = delete;

    // Empty when the server did not start; why is then in failure().
    bool isRunning() const { return !m_issuer.isEmpty(); }
    QString failure() const { return m_failure; }
    // Where its endpoints are, as its discovery document says: path "/auth", "/token" or "/me" (userinfo).
    QString endpoint(const char* path) const { return m_issuer + QLatin1String(path); }

    // What it said of the token requests so far, one line each: "grant authorization_code",
    // "grant refresh_token", and "grant-error invalid_grant".
    QStringList events();
    int count(const QString& event) { return events().count(event); }

    // Points the host's settings group (AWS or Azure) at this server for its client: its
    // endpoints, the loopback callback, and the scope that asks for a refresh token.
    void configure(TestSettings& settings, const QString& group) const;

private:
    QProcess m_node;
    OidcClient m_client;
    QString m_issuer;
    QString m_failure;
    QStringList m_events;
};
