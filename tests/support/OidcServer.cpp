#include "OidcServer.h"

#include "TestSettings.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QStandardPaths>
#include <QUrlQuery>

#include <curl/curl.h>

namespace {

constexpr int kStartLimitMs = 30000;

std::size_t keep(char* data, std::size_t size, std::size_t count, void* page)
{
    static_cast<QByteArray*>(page)->append(data, static_cast<int>(size * count));
    return size * count;
}

// One request to the server: a GET, or a form POST when form is given. The status, 0 when none.
long request(const QString& url, const QByteArray* form, const QByteArray& basicAuth, QByteArray* answer)
{
    CURL* curl = curl_easy_init();
    const QByteArray address = url.toUtf8();
    curl_easy_setopt(curl, CURLOPT_URL, address.constData());
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, answer);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    if (form) {
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE, static_cast<long>(form->size()));
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, form->constData());
    }
    if (!basicAuth.isEmpty()) {
        curl_easy_setopt(curl, CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
        curl_easy_setopt(curl, CURLOPT_USERPWD, basicAuth.constData());
    }
    long status = 0;
    if (curl_easy_perform(curl) == CURLE_OK)
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_cleanup(curl);
    return status;
}

} // namespace

OidcServer::OidcServer(int accessTokenSeconds, const QList<OidcClient>& clients)
{
    const QString node = QStandardPaths::findExecutable(QStringLiteral("node"));
    if (node.isEmpty()) {
        m_failure = QStringLiteral("Node.js (node) is not on the PATH: ./dev installs it");
        return;
    }
    QStringList arguments{QStringLiteral(OIDC_SERVER_SCRIPT), QStringLiteral("--access-token-seconds"),
                          QString::number(accessTokenSeconds)};
    for (const OidcClient& client : clients)
        arguments << QStringLiteral("--client") << client.id + ':' + client.secret + ':' + client.authMethod;
    m_node.start(node, arguments);
    // Its first line names the issuer once it listens.
    const QDeadlineTimer deadline(kStartLimitMs);
    while (!m_node.canReadLine() && m_node.state() != QProcess::NotRunning && !deadline.hasExpired())
        m_node.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
    const QString first = QString::fromUtf8(m_node.readLine()).trimmed();
    if (!first.startsWith(QLatin1String("issuer "))) {
        m_failure = QStringLiteral("The sign-in server did not start (npm ci in tests/oidc-server?): ")
                    + QString::fromUtf8(m_node.readAllStandardError());
        return;
    }
    QByteArray document;
    if (request(first.mid(7) + QStringLiteral("/.well-known/openid-configuration"), nullptr, {}, &document) != 200) {
        m_failure = QStringLiteral("The sign-in server has no discovery document");
        return;
    }
    m_discovery = QJsonDocument::fromJson(document).object();
    m_issuer = first.mid(7);
}

OidcServer::~OidcServer()
{
    if (m_node.state() == QProcess::NotRunning)
        return;
    // It ends when its input closes; a server that does not is ended.
    m_node.closeWriteChannel();
    if (!m_node.waitForFinished(5000)) {
        m_node.kill();
        m_node.waitForFinished();
    }
}

QStringList OidcServer::events()
{
    m_node.waitForReadyRead(0);
    while (m_node.canReadLine())
        m_events << QString::fromUtf8(m_node.readLine()).trimmed();
    return m_events;
}

void OidcServer::configure(TestSettings& settings, const QString& group, const OidcClient& client) const
{
    settings.set(group, "OSDU_CLIENT_ID", client.id);
    settings.set(group, "OSDU_CLIENT_SECRET", client.secret);
    settings.set(group, "OSDU_OAUTH_URL", endpoint("authorization_endpoint"));
    settings.set(group, "OSDU_OAUTH_TOKEN_URL", endpoint("token_endpoint"));
    settings.set(group, "OSDU_CALLBACK_URL", QStringLiteral("http://127.0.0.1/callback"));
    settings.set(group, "OSDU_CALLBACK_PORT", QStringLiteral("0"));
    settings.set(group, "OSDU_SCOPE", QStringLiteral("openid offline_access"));
}
