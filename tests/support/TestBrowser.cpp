#include "TestBrowser.h"

#include <QThread>
#include <QUrlQuery>

#include <curl/curl.h>

namespace {

std::size_t discard(char*, std::size_t size, std::size_t count, void*)
{
    return size * count;
}

// The authorization server redirects to the listener, which answers with a page: follow both.
void browse(const QUrl& url)
{
    CURL* curl = curl_easy_init();
    const QByteArray address = url.toEncoded();
    curl_easy_setopt(curl, CURLOPT_URL, address.constData());
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &discard);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_perform(curl);
    curl_easy_cleanup(curl);
}

} // namespace

osdu::OsduAuthProvider::BrowserOpener testBrowser(std::function<QUrl(const QUrl&)> tamper)
{
    return [tamper = std::move(tamper)](const QUrl& url) {
        const QUrl visited = tamper ? tamper(url) : url;
        QThread* browser = QThread::create([visited] { browse(visited); });
        QObject::connect(browser, &QThread::finished, browser, &QObject::deleteLater);
        browser->start();
        return true;
    };
}

osdu::OsduAuthProvider::BrowserOpener forbiddenBrowser(bool* opened)
{
    return [opened](const QUrl&) {
        *opened = true;
        return false;
    };
}
