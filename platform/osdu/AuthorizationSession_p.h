#pragma once

// Internal to the library: the provider's state and one sign-in attempt.

#include "TokenEndpoint_p.h"

#include <osdu/OsduAuthProvider.h>

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

class QTcpSocket;

namespace osdu {

struct OsduAuthProvider::State
{
    bool initialised = false;
    OsduAuthProviderInitParams params;
    BrowserOpener opener;
    AuthorizationSession* session = nullptr; // the sign-in under way, if any
    long timeoutMs = 30000;                  // of the last sign-in, for later renewals

    // Guards the tokens and params: accessToken() may run on any thread.
    std::mutex tokenMutex;
    std::string accessToken;
    QDateTime accessExpiry;
    std::string refreshToken;
    QDateTime refreshExpiry;

    // With tokenMutex held.
    void keep(const TokenGrant& grant);
    bool bringsNewRefreshToken(const TokenGrant& grant) const;
    void forget();
};

// One sign-in, from authorizeAsync() to its one outcome. Everything it listens with or waits
// for ends with it, and deleting it before its outcome is delivered cancels it: nothing follows.
class AuthorizationSession : public QObject
{
    Q_OBJECT

public:
    AuthorizationSession(OsduAuthProvider& provider, long timeoutMs);
    ~AuthorizationSession() override;

    void startWithRefreshToken(const std::string& refreshToken);
    void startInBrowser();
    // Ends the sign-in before anything was sent, for a reason found in its settings.
    void refuse(const QString& message, const QString& url);

    // The refresh-token grant as the provider authenticates at its token endpoint.
    static TokenRequest refreshRequest(const OsduAuthProvider& provider, const std::string& refreshToken,
                                       long timeoutMs);

private:
    struct Outcome
    {
        QString message; // empty on success
        QString details;
        QUrl url;
    };

    void acceptConnections();
    void readCallback(QTcpSocket* socket);
    void handleCallback(QTcpSocket* socket, const QByteArray& query);
    void exchange(TokenRequest request);
    void exchanged(const TokenGrant& grant);
    void finish(const Outcome& outcome);
    void deliver(const Outcome& outcome);
    QUrl authorizationEndpoint() const;

    OsduAuthProvider& m_provider;
    long m_timeoutMs;
    OsduAuthProviderInitParams m_params;
    QTcpServer m_server;
    QTimer m_browserWait;
    QByteArray m_state;
    QByteArray m_verifier;
    QString m_redirectUri;
    QByteArray m_callbackPath;
    QPointer<QTcpSocket> m_browser; // the answered callback, held until the outcome is known
    std::unique_ptr<QThread> m_exchange;
    std::atomic<bool> m_cancelled{false}; // ends the exchange early when the session goes
    bool m_refreshing = false;
    bool m_finished = false;
};

} // namespace osdu
