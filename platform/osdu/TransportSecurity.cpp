#include "TransportSecurity_p.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QString>
#include <QUrl>

namespace osdu {

bool usesSafeTransport(const std::string& url)
{
    const QUrl parsed(QString::fromStdString(url), QUrl::StrictMode);
    if (!parsed.isValid())
        return false;
    const QString scheme = parsed.scheme().toLower();
    if (scheme == QLatin1String("https"))
        return true;
    if (scheme != QLatin1String("http"))
        return false;
    return isLoopbackHost(parsed.host());
}

bool isLoopbackHost(const QString& host)
{
    return host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 || QHostAddress(host).isLoopback();
}

std::string unsafeTransportMessage(const char* setting)
{
    // The user reads it, as a sign-in or search failure.
    return QCoreApplication::translate(
               "osdu::OsduAuthProvider",
               "The setting %1 must be an https URL: plain http is refused for any host but this machine's loopback")
        .arg(QString::fromUtf8(setting))
        .toStdString();
}

} // namespace osdu
