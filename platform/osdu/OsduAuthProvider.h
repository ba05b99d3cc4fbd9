#pragma once

#include <osdu/osdu_export.h>
#include <osdu/OsduAuthProviderInitParams.h>

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace osdu {

class AuthorizationSession;

// Signs in to an OSDU platform's OAuth 2.0 authorization server and keeps the tokens.
//
// authorizeAsync() signs in with the refresh token when one was given (no browser), else with
// the authorization-code grant through the system browser: a one-shot listener on the loopback
// callback port, a fresh state, PKCE S256, and the code exchanged at the token endpoint. The
// outcome arrives as userAuthorized() or error(), on this object's thread. Each network
// exchange is bounded by the time-out given; the wait for the person in the browser by
// BrowserWaitLimitMs.
//
// Tokens, secrets and codes never appear in a signal, a log line or an exception text.
class OSDU_EXPORT OsduAuthProvider : public QObject
{
    Q_OBJECT

public:
    // Opens url in the user's browser; false when it could not. Replaceable for tests.
    using BrowserOpener = std::function<bool(const QUrl& url)>;
    static constexpr int BrowserWaitLimitMs = 5 * 60 * 1000;
    // An access token this close to expiry is renewed before use.
    static constexpr int RenewalMarginSeconds = 60;

    explicit OsduAuthProvider(QObject* parent = nullptr);
    ~OsduAuthProvider() override;

    void initialize(const OsduAuthProviderInitParams& params);
    // False when a sign-in is already under way or the provider has not been initialised.
    virtual bool authorizeAsync(int timeoutMs);
    // Ends the sign-in under way, if any, before this returns: the listener closes, an exchange
    // with the server is broken off, and neither userAuthorized() nor error() follows. Not from
    // a slot that a signal of the sign-in itself called.
    void cancelAuthorization();

    QString refreshToken() const;
    QDateTime refreshTokenExpiry() const;
    // "AWS" or "Azure": the provider's settings group.
    virtual std::string getProviderName() = 0;

    // A valid access token for a request, renewed first (refresh-token grant) when it is about
    // to expire. Blocking; safe from any thread. Throws std::runtime_error, in words a person
    // understands, when there is none and none can be had; when that is for good (no refresh
    // token, or the server refused it), sessionEnded() follows.
    std::string accessToken();

    void setBrowserOpener(BrowserOpener opener);

Q_SIGNALS:
    void userAuthorized();
    void error(QString message, QString details, QUrl url);
    void info(QString message);
    // No browser could be opened for the sign-in: the person may open url in one themselves;
    // the sign-in waits for them as long as it would for the browser.
    void browserNotOpened(QUrl url);
    // The session can no longer be renewed: only a new sign-in (authorizeAsync) brings one back.
    // May be emitted from the thread that asked for a token.
    void sessionEnded();
    // A renewal brought a new refresh token: whoever keeps the session for the next run keeps
    // this one. May be emitted from the thread that asked for a token.
    void refreshTokenRenewed();

protected:
    using FormFields = std::vector<std::pair<std::string, std::string>>;
    using Headers = std::vector<std::pair<std::string, std::string>>;

    const OsduAuthProviderInitParams& params() const;
    // Provider differences: what the authorization request carries beyond the standard fields,
    // and how the client authenticates at the token endpoint.
    virtual QString authorizationScope() const;
    virtual void addAuthorizationFields(std::vector<std::pair<QString, QString>>& query) const;
    virtual void addClientAuthentication(FormFields& form, Headers& headers) const;

private:
    friend class AuthorizationSession;
    friend class OsduHttpClient;
    struct State;
    // Forgets an access token the platform turned away, unless another thread renewed it
    // meanwhile, so that the next accessToken() renews.
    void discardAccessToken(const std::string& refused);
    // The platform turned away even a freshly renewed token: the session is over.
    void endSession();
    std::unique_ptr<State> m_state;
};

} // namespace osdu
