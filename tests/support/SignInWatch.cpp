#include "SignInWatch.h"

#include "PanelDriver.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
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

osdu::OsduAuthProvider::BrowserOpener forbiddenBrowser(bool* opened)
{
    return [opened](const QUrl&) {
        *opened = true;
        return false;
    };
}

bool signsIn(osdu::OsduAuthProvider& provider, osdu::OsduAuthProvider::BrowserOpener browser)
{
    provider.setBrowserOpener(std::move(browser));
    QSignalSpy authorized(&provider, &osdu::OsduAuthProvider::userAuthorized);
    return provider.authorizeAsync(kSignInLimitMs) && authorized.wait(kSignInLimitMs);
}

bool signsInWithoutBrowser(osdu::OsduAuthProvider& provider)
{
    bool opened = false;
    return signsIn(provider, forbiddenBrowser(&opened)) && !opened;
}

bool connectAndSearch(const fast::OsduWidget& page, osdu::OsduAuthProvider& provider)
{
    QSignalSpy authorized(&provider, &osdu::OsduAuthProvider::userAuthorized);
    QTest::mouseClick(connectButton(page), Qt::LeftButton);
    return authorized.wait(kSignInLimitMs) && search(page);
}
