#include "TokenEndpoint_p.h"

#include <osdu/CurlSession.h>

#include <QUrl>

namespace osdu {

QByteArray percentEncoded(const std::string& text)
{
    return QUrl::toPercentEncoding(QString::fromStdString(text));
}

std::string formEncoded(const FieldList& fields)
{
    QByteArray body;
    for (const auto& [name, value] : fields) {
        if (!body.isEmpty())
            body += '&';
        body += percentEncoded(name) + '=' + percentEncoded(value);
    }
    return body.toStdString();
}

QByteArray base64Url(const QByteArray& bytes)
{
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

TokenGrant requestTokens(const TokenRequest& request)
{
    CurlSession session;
    FieldList headers = request.headers;
    headers.emplace_back("Content-Type", "application/x-www-form-urlencoded");
    headers.emplace_back("Accept", "application/json");
    session.setUrl(request.url);
    session.setHeaders(std::move(headers));
    session.setBody(formEncoded(request.form));
    session.setTimeoutMs(request.timeoutMs);
    if (const std::atomic<bool>* cancelled = request.cancelled)
        session.setAbortCheck([cancelled] { return cancelled->load(); });
    return readTokenAnswer(session.post());
}

} // namespace osdu
