#pragma once

#include <osdu/OsduAuthProvider.h>

#include <QHostAddress>
#include <QList>
#include <QUrl>

// How long a sign-in may take in a test: TLS handshakes and token requests under the sanitizers,
// with both cores busy, take seconds where they take milliseconds on a quiet machine. Only a
// test that is failing anyway waits this long.
constexpr int kSignInLimitMs = 30000;

// Watches sign-ins from the browser's side: which sign-in pages were opened, and on which port
// the panel waited for the answer.
class SignInWatch
{
public:
    // Notes each sign-in page, then hands it to browser (nullptr: leave it unvisited, for the
    // test to visit later).
    osdu::OsduAuthProvider::BrowserOpener opener(osdu::OsduAuthProvider::BrowserOpener browser);

    int opened() const { return m_pages.size(); }
    QUrl lastPage() const { return m_pages.value(m_pages.size() - 1); }
    // The port of the last page's redirect_uri: where the panel's listener waits.
    quint16 callbackPort() const;

private:
    QList<QUrl> m_pages;
};

// Whether something accepts a TCP connection at address:port right now.
bool acceptsConnections(const QHostAddress& address, quint16 port);
