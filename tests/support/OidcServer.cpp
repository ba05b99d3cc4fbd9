#include "OidcServer.h"

#include "TestSettings.h"

#include <QDeadlineTimer>
#include <QStandardPaths>

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
    const QDeadlineTimer deadline(30000);
    while (!m_node.canReadLine() && m_node.state() != QProcess::NotRunning && !deadline.hasExpired())
        m_node.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
    const QString first = QString::fromUtf8(m_node.readLine()).trimmed();
    if (!first.startsWith(QLatin1String("issuer "))) {
        m_failure = QStringLiteral("The sign-in server did not start (npm ci in tests/oidc-server?): ")
                    + QString::fromUtf8(m_node.readAllStandardError());
        return;
    }
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
    settings.set(group, "OSDU_OAUTH_URL", endpoint("/auth"));
    settings.set(group, "OSDU_OAUTH_TOKEN_URL", endpoint("/token"));
    settings.set(group, "OSDU_CALLBACK_URL", QStringLiteral("http://127.0.0.1/callback"));
    settings.set(group, "OSDU_CALLBACK_PORT", QStringLiteral("0"));
    settings.set(group, "OSDU_SCOPE", QStringLiteral("openid offline_access"));
}
