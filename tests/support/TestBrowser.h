#pragma once

#include <osdu/OsduAuthProvider.h>

#include <QUrl>

#include <functional>

// Plays the person's web browser during sign-in: on a thread of its own it opens the sign-in
// URL and follows the redirects back to the loopback listener. tamper may change the URL first
// (to forge the state, say).
osdu::OsduAuthProvider::BrowserOpener testBrowser(std::function<QUrl(const QUrl&)> tamper = {});

// A browser that must not be used: a sign-in that opens it has gone the wrong way.
osdu::OsduAuthProvider::BrowserOpener forbiddenBrowser(bool* opened);
