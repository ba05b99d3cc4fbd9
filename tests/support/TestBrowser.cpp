#include "TestBrowser.h"

#include <QThread>
#include <QUrlQuery>

#include <curl/curl.h>

namespace {

std::size_t keep(char* data, std::size_t size, std::size_t count, void* page)
{
    static_cast<QByteArray*>(page)->append(data, static_cast<int>(size * count));
    return size * count;
}

// The authorization server redirects to the listener, which answers with a page: follow both.
void browse(const QUrl& url, BrowserVisit& visit)
{
    CURL* curl = curl_easy_init();
    const QByteArray address = url.toEncoded();
    curl_easy_setopt(curl, CURLOPT_URL, address.constData());
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &visit.page);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_perform(curl);
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &visit.status);
    curl_easy_cleanup(curl);
    visit.done = true;
}

} // namespace

osdu::OsduAuthProvider::BrowserOpener testBrowser(std::function<QUrl(const QUrl&)> tamper,
                                                  std::shared_ptr<BrowserVisit> visit)
{
    return [tamper = std::move(tamper), visit = std::move(visit)](const QUrl& url) {
        const QUrl visited = tamper ? tamper(url) : url;
        const auto answer = visit ? visit : std::make_shared<BrowserVisit>();
        QThread* browser = QThread::create([visited, answer] { browse(visited, *answer); });
        QObject::connect(browser, &QThread::finished, browser, &QObject::deleteLater);
        browser->start();
        return true;
    };
}

std::function<QUrl(const QUrl&)> replacingQueryItem(const QString& name, const QString& value)
{
    return [name, value](const QUrl& url) {
        QUrlQuery query(url);
        query.removeQueryItem(name);
        query.addQueryItem(name, value);
        QUrl changed(url);
        changed.setQuery(query);
        return changed;
    };
}

osdu::OsduAuthProvider::BrowserOpener forbiddenBrowser(bool* opened)
{
    return [opened](const QUrl&) {
        *opened = true;
        return false;
    };
}
