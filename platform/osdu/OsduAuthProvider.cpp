#include <osdu/OsduAuthProvider.h>

#include "AuthorizationSession_p.h"
#include "TransportSecurity_p.h"

#include <QDesktopServices>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace osdu {

namespace {

// Neither Azure nor Cognito says in its answer how long a refresh token lasts. 30 days is
// Cognito's default and shorter than Azure's 90, so a stored session is given up before the
// server would turn it away.
constexpr qint64 AssumedRefreshLifetimeSeconds = 30LL * 24 * 60 * 60;

bool openInSystemBrowser(const QUrl& url)
{
    return QDesktopServices::openUrl(url);
}

} // namespace

void OsduAuthProvider::State::keep(const TokenGrant& grant)
{
    accessToken = grant.accessToken;
    accessExpiry = grant.accessExpiry;
    // Renewing with a token does not make it last longer: only a new one gets a new expiry, so
    // a session kept for the next run is given up when the server would give it up.
    if (bringsNewRefreshToken(grant)) {
        refreshToken = grant.refreshToken;
        refreshExpiry = grant.refreshExpiry.isValid()
                            ? grant.refreshExpiry
                            : QDateTime::currentDateTimeUtc().addSecs(AssumedRefreshLifetimeSeconds);
    }
}

bool OsduAuthProvider::State::bringsNewRefreshToken(const TokenGrant& grant) const
{
    return !grant.refreshToken.empty() && grant.refreshToken != refreshToken;
}

void OsduAuthProvider::State::forget()
{
    accessToken.clear();
    accessExpiry = QDateTime();
    refreshToken.clear();
    refreshExpiry = QDateTime();
}

OsduAuthProvider::OsduAuthProvider(QObject* parent) : QObject(parent), m_state(std::make_unique<State>())
{
    m_state->opener = &openInSystemBrowser;
}

OsduAuthProvider::~OsduAuthProvider()
{
    // Before the state goes: the session waits for its exchange with the server.
    delete m_state->session;
}

void OsduAuthProvider::initialize(const OsduAuthProviderInitParams& params)
{
    const std::lock_guard<std::mutex> lock(m_state->tokenMutex);
    m_state->params = params;
    m_state->initialised = true;
    m_state->forget();
    m_state->refreshToken = params.refreshToken;
}

bool OsduAuthProvider::authorizeAsync(int timeoutMs)
{
    if (!m_state->initialised || m_state->session)
        return false;
    // libcurl reads 0 as no limit; a negative limit is taken for the same.
    const long limit = std::max(timeoutMs, 0);
    std::string refreshToken;
    {
        const std::lock_guard<std::mutex> lock(m_state->tokenMutex);
        m_state->timeoutMs = limit;
        refreshToken = m_state->refreshToken;
    }
    auto* session = new AuthorizationSession(*this, limit);
    m_state->session = session;
    // Tokens and codes never travel in the clear: refused before anything is sent or looked up.
    for (const auto& [url, setting] : {std::pair(&m_state->params.oauthUrl, "OSDU_OAUTH_URL"),
                                       std::pair(&m_state->params.oauthTokenUrl, "OSDU_OAUTH_TOKEN_URL")}) {
        if (!usesSafeTransport(*url)) {
            session->refuse(QString::fromStdString(unsafeTransportMessage(setting)), QString::fromStdString(*url));
            return true;
        }
    }
    if (refreshToken.empty())
        session->startInBrowser();
    else
        session->startWithRefreshToken(refreshToken);
    return true;
}

void OsduAuthProvider::cancelAuthorization()
{
    delete std::exchange(m_state->session, nullptr);
}

QString OsduAuthProvider::refreshToken() const
{
    const std::lock_guard<std::mutex> lock(m_state->tokenMutex);
    return QString::fromStdString(m_state->refreshToken);
}

QDateTime OsduAuthProvider::refreshTokenExpiry() const
{
    const std::lock_guard<std::mutex> lock(m_state->tokenMutex);
    return m_state->refreshExpiry;
}

std::string OsduAuthProvider::accessToken()
{
    State& state = *m_state;
    std::string failure;
    bool ended = false;
    std::string renewed;
    {
        // Held through a renewal, so that threads asking at once share one exchange.
        const std::lock_guard<std::mutex> lock(state.tokenMutex);
        if (!state.accessToken.empty()
            && QDateTime::currentDateTimeUtc().addSecs(RenewalMarginSeconds) < state.accessExpiry)
            return state.accessToken;
        if (state.refreshToken.empty()) {
            failure = "Not signed in to the OSDU platform";
            ended = true;
        } else {
            const TokenGrant grant = requestTokens(
                AuthorizationSession::refreshRequest(*this, state.refreshToken, state.timeoutMs));
            if (grant.ok) {
                const bool refreshChanged = state.bringsNewRefreshToken(grant);
                state.keep(grant);
                renewed = state.accessToken;
                if (!refreshChanged)
                    return renewed;
            }
            if (grant.refused)
                state.forget();
            failure = "Unable to renew the OSDU access token: " + grant.details.toStdString();
            ended = grant.refused;
        }
    }
    // Outside the lock: a receiver on this thread may ask for a token again.
    if (!renewed.empty()) {
        Q_EMIT refreshTokenRenewed();
        return renewed;
    }
    if (ended)
        Q_EMIT sessionEnded();
    throw std::runtime_error(failure);
}

void OsduAuthProvider::endSession()
{
    {
        const std::lock_guard<std::mutex> lock(m_state->tokenMutex);
        m_state->forget();
    }
    Q_EMIT sessionEnded();
}

void OsduAuthProvider::discardAccessToken(const std::string& refused)
{
    const std::lock_guard<std::mutex> lock(m_state->tokenMutex);
    if (m_state->accessToken == refused)
        m_state->accessToken.clear();
}

void OsduAuthProvider::setBrowserOpener(BrowserOpener opener)
{
    m_state->opener = opener ? std::move(opener) : BrowserOpener(&openInSystemBrowser);
}

const OsduAuthProviderInitParams& OsduAuthProvider::params() const
{
    return m_state->params;
}

QString OsduAuthProvider::authorizationScope() const
{
    return QString::fromStdString(params().scope);
}

void OsduAuthProvider::addAuthorizationFields(std::vector<std::pair<QString, QString>>& /*query*/) const
{
}

void OsduAuthProvider::addClientAuthentication(FormFields& form, Headers& /*headers*/) const
{
    form.emplace_back("client_id", params().clientId);
}

} // namespace osdu
