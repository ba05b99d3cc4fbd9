#include "SignInWatch.h"

#include <QTcpSocket>
#include <QUrlQuery>

osdu::OsduAuthProvider::BrowserOpener SignInWatch::opener(osdu::OsduAuthProvider::BrowserOpener browser)
{
    return [this, browser = std::move(browser)](const QUrl& page) {
        m_pages.append(page);
        return browser ? browser(page) : true;
    };
}

quint16 SignInWatch::callbackPort() const
{
    const QUrl redirect(QUrlQuery(lastPage()).queryItemValue(QStringLiteral("redirect_uri"), QUrl::FullyDecoded));
    return static_cast<quint16>(redirect.port(80));
}

bool acceptsConnections(const QHostAddress& address, quint16 port)
{
    QTcpSocket probe;
    probe.connectToHost(address, port);
    const bool accepted = probe.waitForConnected(3000);
    probe.abort();
    return accepted;
}
