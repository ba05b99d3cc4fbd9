#include "HeadlessBrowser.h"

#include <QThread>
#include <QUrl>

#include <curl/curl.h>

#include <cstdio>

namespace {

std::size_t discard(char* /*data*/, std::size_t size, std::size_t count, void* /*context*/)
{
    return size * count;
}

void browse(const QUrl& url)
{
    CURL* curl = curl_easy_init();
    if (!curl) {
        std::fprintf(stderr, "fast-panel-demo: the headless browser could not start\n");
        return;
    }
    const QByteArray address = url.toEncoded();
    curl_easy_setopt(curl, CURLOPT_URL, address.constData());
    // Two hops: the authorization server sends the browser to the listener, which answers.
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 5L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &discard);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 30L);
    // Signals belong to the GUI thread.
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    const CURLcode result = curl_easy_perform(curl);
    if (result != CURLE_OK) {
        // The address carries the sign-in's state and challenge: name only the server.
        std::fprintf(stderr, "fast-panel-demo: the headless browser could not follow the sign-in at %s: %s\n",
                     qPrintable(url.adjusted(QUrl::RemovePath | QUrl::RemoveQuery).toString()),
                     curl_easy_strerror(result));
    }
    curl_easy_cleanup(curl);
}

} // namespace

osdu::OsduAuthProvider::BrowserOpener headlessBrowser()
{
    // Not thread-safe, so done here on the GUI thread rather than lazily by the first handle.
    curl_global_init(CURL_GLOBAL_DEFAULT);
    return [](const QUrl& url) {
        QThread* browser = QThread::create([url] { browse(url); });
        QObject::connect(browser, &QThread::finished, browser, &QObject::deleteLater);
        browser->start();
        return true;
    };
}
