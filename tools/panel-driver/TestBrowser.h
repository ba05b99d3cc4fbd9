#pragma once

#include <osdu/OsduAuthProvider.h>

#include <QByteArray>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

// What the loopback listener finally answered the browser. Filled on the browser's thread:
// status and page may be read once done is true.
struct BrowserVisit
{
    std::atomic<bool> done{false};
    long status = 0;
    QByteArray page;
    // The sign-in server's own pages on the way that asked something of the person (a login
    // form, a consent form), in the order they were answered.
    int formsAnswered = 0;
};

// Plays the person's web browser during sign-in: on a thread of its own it opens the sign-in
// URL and follows the redirects back to the loopback listener, keeping cookies and answering
// the server's forms on the way (any login and password; consent given). tamper may change the
// URL first (to forge the state, say); visit, when given, receives the listener's answer. A
// transport failure is logged as a warning; the sign-in then times out.
osdu::OsduAuthProvider::BrowserOpener testBrowser(std::function<QUrl(const QUrl&)> tamper = {},
                                                  std::shared_ptr<BrowserVisit> visit = {});

// One of several visits that one browser (one cookie store) makes in turn for one sign-in.
struct BrowserStep
{
    std::function<QUrl(const QUrl&)> tamper;
    std::shared_ptr<BrowserVisit> visit;
};
osdu::OsduAuthProvider::BrowserOpener testBrowser(std::vector<BrowserStep> steps);

// A tamper for testBrowser: the sign-in URL with one query item's value replaced.
std::function<QUrl(const QUrl&)> replacingQueryItem(const QString& name, const QString& value);
