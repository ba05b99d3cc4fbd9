#include "OidcServer.h"

#include "TestSettings.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QStandardPaths>

#include <curl/curl.h>

namespace {

constexpr int kStartLimitMs = 30000;

std::size_t keep(char* data, std::size_t size, std::size_t count, void* page)
{
    static_cast<QByteArray*>(page)->append(data, static_cast<int>(size * count));
    return size * count;
}

// The server's answer to a GET, empty when it did not answer 200.
QByteArray get(const QString& url)
{
    QByteArray answer;
    CURL* curl = curl_easy_init();
    const QByteArray address = url.toUtf8();
    curl_easy_setopt(curl, CURLOPT_URL, address.constData());
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &answer);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    long status = 0;
    if (curl_easy_perform(curl) == CURLE_OK)
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_cleanup(curl);
    return status == 200 ? answer : QByteArray();
}

} // namespace

OidcServer::OidcServer(int accessTokenSeconds, const OidcClient& client) : m_client(client)
{
    const QString node = QStandardPaths::findExecutable(QStringLiteral("node"));
    if (node.isEmpty()) {
        m_failure = QStringLiteral("Node.js (node) is not on the PATH: ./dev installs it");
        return;
    }
    m_node.start(node, {QStringLiteral(OIDC_SERVER_SCRIPT), QStringLiteral("--access-token-seconds"),
                        QString::number(accessTokenSeconds), QStringLiteral("--client"),
                        client.id + ':' + client.secret + ':' + client.authMethod});
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
    m_discovery =
        QJsonDocument::fromJson(get(first.mid(7) + QStringLiteral("/.well-known/openid-configuration"))).object();
    if (m_discovery.isEmpty())
        m_failure = QStringLiteral("The sign-in server has no discovery document");
    else
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

void OidcServer::configure(TestSettings& settings, const QString& group) const
{
    settings.set(group, "OSDU_CLIENT_ID", m_client.id);
    settings.set(group, "OSDU_CLIENT_SECRET", m_client.secret);
    settings.set(group, "OSDU_OAUTH_URL", endpoint("authorization_endpoint"));
    settings.set(group, "OSDU_OAUTH_TOKEN_URL", endpoint("token_endpoint"));
    settings.set(group, "OSDU_CALLBACK_URL", QStringLiteral("http://127.0.0.1/callback"));
    settings.set(group, "OSDU_CALLBACK_PORT", QStringLiteral("0"));
    settings.set(group, "OSDU_SCOPE", QStringLiteral("openid offline_access"));
}
