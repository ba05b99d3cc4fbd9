#include "NetworkRoute.h"

#include "TransportSecurity_p.h"

#include <QByteArray>
#include <QNetworkProxy>
#include <QNetworkProxyFactory>
#include <QNetworkProxyQuery>
#include <QUrl>

#include <chrono>
#include <map>
#include <mutex>

namespace osdu {

namespace {

// Long enough that a search asks the system once, short enough that a changed network (a VPN
// coming up, say) is taken within a minute.
constexpr std::chrono::minutes kRouteLifetime{1};

struct Route
{
    std::string proxy; // empty: direct
    long port = 0;
    long type = CURLPROXY_HTTP;
    std::string user;
    std::string password;
};

Route systemRoute(const QUrl& url)
{
    // The system lists proxies in its order of preference; libcurl takes one, so the first it can use.
    for (const QNetworkProxy& proxy : QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url))) {
        Route route;
        switch (proxy.type()) {
        case QNetworkProxy::NoProxy:
            return {};
        case QNetworkProxy::HttpProxy:
        case QNetworkProxy::HttpCachingProxy:
            route.type = CURLPROXY_HTTP;
            break;
        case QNetworkProxy::Socks5Proxy:
            // The proxy looks the name up: this machine may not be able to.
            route.type = CURLPROXY_SOCKS5_HOSTNAME;
            break;
        default:
            continue;
        }
        const QString host = proxy.hostName();
        route.proxy = (host.contains(':') ? '[' + host + ']' : host).toStdString();
        route.port = proxy.port();
        route.user = proxy.user().toStdString();
        route.password = proxy.password().toStdString();
        return route;
    }
    return {};
}

Route routeFor(const std::string& url)
{
    const QUrl parsed(QString::fromStdString(url));
    if (isLoopbackHost(parsed.host()))
        return {};
    struct Known
    {
        Route route;
        std::chrono::steady_clock::time_point asked;
    };
    static std::mutex mutex;
    static std::map<std::string, Known> known;
    const std::string key = parsed.scheme().toStdString() + "://" + parsed.host().toStdString();
    // Held while the system answers, so that threads asking for one host at once ask it once.
    const std::lock_guard<std::mutex> lock(mutex);
    const auto now = std::chrono::steady_clock::now();
    const auto found = known.find(key);
    if (found != known.end() && now - found->second.asked < kRouteLifetime)
        return found->second.route;
    Route route = systemRoute(parsed);
    known[key] = {route, now};
    return route;
}

const char* orNull(const std::string& text)
{
    return text.empty() ? nullptr : text.c_str();
}

} // namespace

void applyNetworkRoute(CURL* handle, const std::string& url)
{
    const Route route = routeFor(url);
    // libcurl copies the strings. An empty proxy is its word for direct, which also keeps it
    // from reading the environment itself: the system's answer has been taken already.
    curl_easy_setopt(handle, CURLOPT_PROXY, route.proxy.c_str());
    curl_easy_setopt(handle, CURLOPT_PROXYPORT, route.port);
    curl_easy_setopt(handle, CURLOPT_PROXYTYPE, route.type);
    curl_easy_setopt(handle, CURLOPT_NOPROXY, "");
    curl_easy_setopt(handle, CURLOPT_PROXYUSERNAME, orNull(route.user));
    curl_easy_setopt(handle, CURLOPT_PROXYPASSWORD, orNull(route.password));
    // The curl tool's convention names a bundle of certificate authorities of one's own (a
    // company's, a test's); the system's own still count. libcurl copies the text.
    const QByteArray authorities = qgetenv("CURL_CA_BUNDLE");
    if (!authorities.isEmpty())
        curl_easy_setopt(handle, CURLOPT_CAINFO, authorities.constData());
#if defined(_WIN32) && defined(CURLSSLOPT_NATIVE_CA)
    // The certificates that Windows trusts, its administrators' and companies' own included.
    curl_easy_setopt(handle, CURLOPT_SSL_OPTIONS, static_cast<long>(CURLSSLOPT_NATIVE_CA));
#endif
}

} // namespace osdu
