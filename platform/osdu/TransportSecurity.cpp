#include "TransportSecurity_p.h"

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
    const QString host = parsed.host();
    return host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 || QHostAddress(host).isLoopback();
}

std::string unsafeTransportMessage(const char* setting)
{
    return std::string("The setting ") + setting
           + " must be an https URL: plain http is refused for any host but this machine's loopback";
}

} // namespace osdu
