#pragma once

#include <osdu/OsduAuthProvider.h>

#include <QHostAddress>
#include <QList>
#include <QUrl>

// How long a sign-in may take in a test: TLS handshakes and token requests under the sanitizers,
// with both cores busy, take seconds. Only a test that is failing anyway waits this long.
constexpr int kSignInLimitMs = 30000;

namespace fast {
class OsduWidget;
}

// Watches sign-ins from the browser's side: the sign-in pages opened, and the port the panel
// waited on for the answer.
class SignInWatch
{
public:
    // Notes each sign-in page, then hands it to browser (nullptr: leaves it for the test to visit).
    osdu::OsduAuthProvider::BrowserOpener opener(osdu::OsduAuthProvider::BrowserOpener browser);

    int opened() const { return m_pages.size(); }
    QUrl lastPage() const { return m_pages.value(m_pages.size() - 1); }
    // The port of the last page's redirect_uri.
    quint16 callbackPort() const;

private:
    QList<QUrl> m_pages;
};

// Whether something accepts a TCP connection at address:port right now.
bool acceptsConnections(const QHostAddress& address, quint16 port);
// A browser that must not be used: a sign-in that opens it has gone the wrong way.
osdu::OsduAuthProvider::BrowserOpener forbiddenBrowser(bool* opened);
// Signs provider in with browser; false when that failed or did not end in time.
bool signsIn(osdu::OsduAuthProvider& provider, osdu::OsduAuthProvider::BrowserOpener browser);
// Signs provider in as a later run does, from its refresh token; false when that failed or
// needed the browser.
bool signsInWithoutBrowser(osdu::OsduAuthProvider& provider);
// Clicks Connect, waits for provider's sign-in, then searches as search() does; false if either
// did not end in time.
bool connectAndSearch(const fast::OsduWidget& page, osdu::OsduAuthProvider& provider);
