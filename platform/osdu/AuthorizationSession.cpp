#include "AuthorizationSession_p.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QHostAddress>
#include <QMap>
#include <QRandomGenerator>
#include <QTcpSocket>

#include <vector>

namespace osdu {

namespace {

// A browser's request line and headers fit easily; anything longer is not a browser.
constexpr int MaxRequestBytes = 16 * 1024;
// Time for the browser to take the page once the outcome is known.
constexpr int PageDeliveryMs = 10 * 1000;

QByteArray randomBytes(int words)
{
    std::vector<quint32> buffer(static_cast<std::size_t>(words));
    QRandomGenerator::system()->fillRange(buffer.data(), static_cast<qsizetype>(buffer.size()));
    return QByteArray(reinterpret_cast<const char*>(buffer.data()), words * 4);
}

// The callback's query is form-encoded, so '+' stands for a space.
QByteArray decoded(QByteArray text)
{
    return QByteArray::fromPercentEncoding(text.replace('+', ' '));
}

// The page the browser shows at the end of the sign-in, in the user's language.
void reply(QTcpSocket* socket, int status, const QString& text)
{
    const QString title = QCoreApplication::translate("osdu::AuthorizationSession", "Sign-in");
    const QByteArray body = "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>"
                            + title.toHtmlEscaped().toUtf8() + "</title></head><body><p>"
                            + text.toHtmlEscaped().toUtf8() + "</p></body></html>";
    const QByteArray reason = status == 200 ? "OK" : status == 404 ? "Not Found" : "Bad Request";
    socket->write("HTTP/1.1 " + QByteArray::number(status) + ' ' + reason
                  + "\r\nContent-Type: text/html; charset=utf-8\r\nCache-Control: no-store\r\nConnection: close"
                  + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
    socket->disconnectFromHost();
}

} // namespace

AuthorizationSession::AuthorizationSession(OsduAuthProvider& provider, long timeoutMs)
    : QObject(&provider), m_provider(provider), m_timeoutMs(timeoutMs), m_params(provider.params())
{
}

AuthorizationSession::~AuthorizationSession()
{
    m_cancelled = true;
    if (m_exchange)
        m_exchange->wait();
}

TokenRequest AuthorizationSession::refreshRequest(const OsduAuthProvider& provider, const std::string& refreshToken,
                                                  long timeoutMs)
{
    TokenRequest request{provider.params().oauthTokenUrl,
                         {{"grant_type", "refresh_token"}, {"refresh_token", refreshToken}},
                         {},
                         timeoutMs};
    provider.addClientAuthentication(request.form, request.headers);
    return request;
}

void AuthorizationSession::startWithRefreshToken(const std::string& refreshToken)
{
    m_refreshing = true;
    Q_EMIT m_provider.info(tr("Signing in with the stored session"));
    exchange(refreshRequest(m_provider, refreshToken, m_timeoutMs));
}

void AuthorizationSession::startInBrowser()
{
    const int port = m_params.callbackPort;
    if (port < 0 || port > 65535 || !m_server.listen(QHostAddress::LocalHost, static_cast<quint16>(port))) {
        const QString why = port < 0 || port > 65535 ? tr("not a port number") : m_server.errorString();
        finish({tr("Unable to listen for the sign-in answer on port %1: %2").arg(port).arg(why),
                {},
                QUrl(QString::fromStdString(m_params.callbackUrl))});
        return;
    }
    QUrl redirect(QString::fromStdString(m_params.callbackUrl));
    // An explicit ":80" would not match a redirect URI registered without a port.
    if (m_server.serverPort() != 80)
        redirect.setPort(m_server.serverPort());
    m_redirectUri = redirect.toString(QUrl::FullyEncoded);
    m_callbackPath = redirect.path(QUrl::FullyEncoded).toUtf8();
    if (m_callbackPath.isEmpty())
        m_callbackPath = "/";

    m_state = base64Url(randomBytes(8));
    m_verifier = base64Url(randomBytes(8));
    std::vector<std::pair<QString, QString>> fields{{"response_type", "code"},
                                                    {"client_id", QString::fromStdString(m_params.clientId)},
                                                    {"redirect_uri", m_redirectUri}};
    const QString scope = m_provider.authorizationScope();
    if (!scope.isEmpty())
        fields.emplace_back("scope", scope);
    if (!m_params.prompt.empty())
        fields.emplace_back("prompt", QString::fromStdString(m_params.prompt));
    fields.emplace_back("state", QString::fromLatin1(m_state));
    const QByteArray challenge = base64Url(QCryptographicHash::hash(m_verifier, QCryptographicHash::Sha256));
    fields.emplace_back("code_challenge", QString::fromLatin1(challenge));
    fields.emplace_back("code_challenge_method", "S256");
    m_provider.addAuthorizationFields(fields);

    // Built by hand: QUrlQuery would leave a '+' as it is, which the server reads as a space.
    QByteArray url = QByteArray::fromStdString(m_params.oauthUrl);
    for (const auto& [name, value] : fields) {
        url += url.contains('?') ? '&' : '?';
        url += QUrl::toPercentEncoding(name) + '=' + QUrl::toPercentEncoding(value);
    }

    connect(&m_server, &QTcpServer::newConnection, this, &AuthorizationSession::acceptConnections);
    m_browserWait.setSingleShot(true);
    connect(&m_browserWait, &QTimer::timeout, this, [this] {
        finish({tr("Sign-in timed out: no answer came back from the browser"), {}, authorizationEndpoint()});
    });
    m_browserWait.start(OsduAuthProvider::BrowserWaitLimitMs);
    Q_EMIT m_provider.info(tr("Waiting for the sign-in in the web browser"));
    const QUrl signInUrl = QUrl::fromEncoded(url, QUrl::StrictMode);
    // The person can still open the page in a browser of their own: the wait goes on.
    if (!m_provider.m_state->opener(signInUrl)) {
        Q_EMIT m_provider.info(tr("No web browser could be opened: the sign-in address is shown instead"));
        Q_EMIT m_provider.browserNotOpened(signInUrl);
    }
}

void AuthorizationSession::refuse(const QString& message, const QString& url)
{
    finish({message, url, QUrl(url)});
}

void AuthorizationSession::acceptConnections()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readCallback(socket); });
    }
}

void AuthorizationSession::readCallback(QTcpSocket* socket)
{
    const QByteArray head = socket->peek(socket->bytesAvailable());
    if (!head.contains("\r\n\r\n")) {
        if (head.size() > MaxRequestBytes)
            socket->abort();
        return;
    }
    disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
    const QList<QByteArray> words = head.left(head.indexOf("\r\n")).split(' ');
    const QByteArray target = words.size() == 3 && words[0] == "GET" ? words[1] : QByteArray();
    const int question = target.indexOf('?');
    if (m_finished || m_browser || target.left(question) != m_callbackPath) {
        reply(socket, 404, tr("Not found."));
        return;
    }
    handleCallback(socket, question < 0 ? QByteArray() : target.mid(question + 1));
}

void AuthorizationSession::handleCallback(QTcpSocket* socket, const QByteArray& query)
{
    QMap<QByteArray, QByteArray> fields;
    for (const QByteArray& pair : query.split('&')) {
        const int equals = pair.indexOf('=');
        const QByteArray name = decoded(pair.left(equals));
        if (!fields.contains(name))
            fields.insert(name, equals < 0 ? QByteArray() : decoded(pair.mid(equals + 1)));
    }
    // Any local program or web page can reach this port; only the answer that carries this
    // sign-in's state may end it, so the others are turned away and the wait goes on.
    if (fields.value("state") != m_state) {
        reply(socket, 400, tr("This answer did not come from the sign-in under way (state mismatch)"));
        Q_EMIT m_provider.info(tr("A sign-in answer without this sign-in's state was refused"));
        return;
    }
    m_browser = socket;
    m_browserWait.stop();
    m_server.close();
    const QByteArray code = fields.value("code");
    if (fields.contains("error") || code.isEmpty()) {
        QString details = QString::fromUtf8(fields.value("error"));
        const QString description = QString::fromUtf8(fields.value("error_description"));
        if (!description.isEmpty())
            details += (details.isEmpty() ? QString() : QStringLiteral(": ")) + description;
        if (details.isEmpty())
            details = tr("no authorization code came back");
        finish({tr("Sign-in was refused by the authorization server"), details, authorizationEndpoint()});
        return;
    }

    Q_EMIT m_provider.info(tr("Completing the sign-in with the authorization server"));
    TokenRequest request{m_params.oauthTokenUrl,
                         {{"grant_type", "authorization_code"},
                          {"code", code.toStdString()},
                          {"redirect_uri", m_redirectUri.toStdString()},
                          {"code_verifier", m_verifier.toStdString()}},
                         {},
                         m_timeoutMs};
    m_provider.addClientAuthentication(request.form, request.headers);
    exchange(std::move(request));
}

void AuthorizationSession::exchange(TokenRequest request)
{
    // The GUI thread must not wait on the network; the answer comes back to this thread.
    request.cancelled = &m_cancelled;
    m_exchange.reset(QThread::create([this, request = std::move(request)] {
        const TokenGrant grant = requestTokens(request);
        QMetaObject::invokeMethod(
            this, [this, grant] { exchanged(grant); }, Qt::QueuedConnection);
    }));
    m_exchange->start();
}

void AuthorizationSession::exchanged(const TokenGrant& grant)
{
    {
        OsduAuthProvider::State& state = *m_provider.m_state;
        const std::lock_guard<std::mutex> lock(state.tokenMutex);
        if (grant.ok)
            state.keep(grant);
        else if (grant.refused && m_refreshing)
            state.forget();
    }
    if (grant.ok)
        finish({});
    else
        finish({grant.message, grant.details, QUrl(QString::fromStdString(m_params.oauthTokenUrl))});
}

void AuthorizationSession::finish(const Outcome& outcome)
{
    if (m_finished)
        return;
    m_finished = true;
    m_browserWait.stop();
    m_server.close();
    if (QTcpSocket* socket = m_browser) {
        // The page outlives the session: the socket goes once the browser has it.
        socket->setParent(nullptr);
        QTimer::singleShot(PageDeliveryMs, socket, &QObject::deleteLater);
        if (outcome.message.isEmpty())
            reply(socket, 200, tr("Signed in. You can close this window."));
        else
            reply(socket, 400, tr("%1. You can close this window.").arg(outcome.message));
    }
    // Queued, so that no outcome reaches a slot from inside authorizeAsync(); and to this
    // session, so that a sign-in cancelled meanwhile says nothing.
    QMetaObject::invokeMethod(
        this, [this, outcome] { deliver(outcome); }, Qt::QueuedConnection);
}

void AuthorizationSession::deliver(const Outcome& outcome)
{
    OsduAuthProvider* provider = &m_provider;
    if (provider->m_state->session == this)
        provider->m_state->session = nullptr;
    deleteLater();
    if (outcome.message.isEmpty())
        Q_EMIT provider->userAuthorized();
    else
        Q_EMIT provider->error(outcome.message, outcome.details, outcome.url);
}

QUrl AuthorizationSession::authorizationEndpoint() const
{
    return QUrl(QString::fromStdString(m_params.oauthUrl)).adjusted(QUrl::RemoveQuery);
}

} // namespace osdu
