#include "TestBrowser.h"

#include <QDebug>
#include <QRegularExpression>
#include <QThread>
#include <QUrlQuery>

#include <curl/curl.h>

#include <mutex>

namespace {

// More forms than a login and a consent page mean the server is going round in circles.
constexpr int kMostForms = 4;

std::size_t keep(char* data, std::size_t size, std::size_t count, void* page)
{
    static_cast<QByteArray*>(page)->append(data, static_cast<int>(size * count));
    return size * count;
}

QString attribute(const QString& tag, const QString& name)
{
    const QRegularExpression value(QStringLiteral("\\b%1=\"([^\"]*)\"").arg(name));
    return value.match(tag).captured(1);
}

// The page's form that posts, filled as the person would: hidden fields as they are, a login
// and a password where asked. Empty when the page has none.
struct Form
{
    QUrl action;
    QByteArray body;
};

Form postedForm(const QByteArray& page, const QUrl& pageUrl)
{
    const QString html = QString::fromUtf8(page);
    const QRegularExpression formTag(QStringLiteral("<form\\b[^>]*>"), QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch form = formTag.match(html);
    if (!form.hasMatch() || attribute(form.captured(), QStringLiteral("method")).toLower() != QLatin1String("post"))
        return {};
    const int end = html.indexOf(QLatin1String("</form>"), form.capturedEnd());
    const QString fields = html.mid(form.capturedEnd(), end < 0 ? -1 : end - form.capturedEnd());
    QUrlQuery body;
    const QRegularExpression inputTag(QStringLiteral("<input\\b[^>]*>"), QRegularExpression::CaseInsensitiveOption);
    for (auto input = inputTag.globalMatch(fields); input.hasNext();) {
        const QString tag = input.next().captured();
        const QString name = attribute(tag, QStringLiteral("name"));
        const QString type = attribute(tag, QStringLiteral("type")).toLower();
        if (name.isEmpty())
            continue;
        if (type == QLatin1String("password"))
            body.addQueryItem(name, QStringLiteral("any password"));
        else if (type == QLatin1String("hidden"))
            body.addQueryItem(name, attribute(tag, QStringLiteral("value")));
        else
            body.addQueryItem(name, QStringLiteral("geoscientist"));
    }
    return {pageUrl.resolved(QUrl(attribute(form.captured(), QStringLiteral("action")))),
            body.toString(QUrl::FullyEncoded).toUtf8()};
}

// Loads url (a GET, or a POST of body), following redirects; the page lands in visit.
QUrl load(CURL* curl, const QUrl& url, const QByteArray* body, BrowserVisit& visit)
{
    visit.page.clear();
    const QByteArray address = url.toEncoded();
    curl_easy_setopt(curl, CURLOPT_URL, address.constData());
    if (body) {
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE, static_cast<long>(body->size()));
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body->constData());
    } else {
        curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
    }
    if (const CURLcode result = curl_easy_perform(curl); result != CURLE_OK) {
        // The address carries the sign-in's state and challenge: name only the server.
        qWarning("the browser could not load a page of %s: %s",
                 qPrintable(url.adjusted(QUrl::RemovePath | QUrl::RemoveQuery).toString()), curl_easy_strerror(result));
    }
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &visit.status);
    char* landed = nullptr;
    curl_easy_getinfo(curl, CURLINFO_EFFECTIVE_URL, &landed);
    return landed ? QUrl::fromEncoded(landed) : url;
}

// The authorization server redirects to the listener, perhaps after its own pages: answer them
// and follow the redirects to the listener's page.
void browse(CURL* curl, const QUrl& url, BrowserVisit& visit)
{
    QUrl landed = load(curl, url, nullptr, visit);
    for (Form form = postedForm(visit.page, landed); !form.body.isEmpty() && visit.formsAnswered < kMostForms;
         form = postedForm(visit.page, landed)) {
        ++visit.formsAnswered;
        landed = load(curl, form.action, &form.body, visit);
    }
    visit.done = true;
}

void browseInTurn(const QUrl& signIn, const std::vector<BrowserStep>& steps)
{
    CURL* curl = curl_easy_init();
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_COOKIEFILE, "");
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    for (const BrowserStep& step : steps) {
        const auto visit = step.visit ? step.visit : std::make_shared<BrowserVisit>();
        curl_easy_setopt(curl, CURLOPT_WRITEDATA, &visit->page);
        browse(curl, step.tamper ? step.tamper(signIn) : signIn, *visit);
    }
    curl_easy_cleanup(curl);
}

} // namespace

osdu::OsduAuthProvider::BrowserOpener testBrowser(std::function<QUrl(const QUrl&)> tamper,
                                                  std::shared_ptr<BrowserVisit> visit)
{
    return testBrowser(std::vector<BrowserStep>{{std::move(tamper), std::move(visit)}});
}

osdu::OsduAuthProvider::BrowserOpener testBrowser(std::vector<BrowserStep> steps)
{
    // Not thread-safe, so done here rather than lazily by the browser thread's first handle.
    static std::once_flag curlReady;
    std::call_once(curlReady, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    return [steps = std::move(steps)](const QUrl& url) {
        QThread* browser = QThread::create([url, steps] { browseInTurn(url, steps); });
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
