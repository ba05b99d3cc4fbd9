#include "TokenAnswer_p.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVariant>

#include <algorithm>

// The sign-in's failures reach the user through OsduAuthProvider::error, and are translated
// under that class.

namespace osdu {

namespace {

// No lifetime is taken for longer than a year: a token is renewed on its first refusal anyway,
// and a lifetime of millions of years (seen from a broken server) lies beyond the dates that
// QDateTime can hold, which would leave the expiry invalid.
constexpr qint64 kLongestLifetimeSeconds = 365LL * 24 * 60 * 60;

// Servers are not agreed on whether the lifetimes are JSON numbers or strings.
qint64 seconds(const QJsonObject& answer, const char* field, qint64 fallback)
{
    const QJsonValue value = answer.value(QLatin1String(field));
    bool ok = false;
    const qint64 parsed = value.toVariant().toLongLong(&ok);
    return ok && parsed > 0 ? std::min(parsed, kLongestLifetimeSeconds) : fallback;
}

QString serverWords(const QJsonObject& answer, int status)
{
    const QString code = answer.value(QStringLiteral("error")).toString();
    const QString description = answer.value(QStringLiteral("error_description")).toString();
    if (code.isEmpty() && description.isEmpty())
        return QCoreApplication::translate("osdu::OsduAuthProvider", "HTTP status %1").arg(status);
    if (code.isEmpty() || description.isEmpty())
        return code + description;
    return code + QStringLiteral(": ") + description;
}

} // namespace

TokenGrant readTokenAnswer(const CurlResponse& response)
{
    TokenGrant grant;
    if (response.statusCode == 0) {
        grant.message = QCoreApplication::translate("osdu::OsduAuthProvider",
                                                    "Unable to reach the authorization server");
        grant.details = QString::fromStdString(response.error);
        return grant;
    }
    const QJsonObject answer = QJsonDocument::fromJson(QByteArray::fromStdString(response.text)).object();
    const QString accessToken = answer.value(QStringLiteral("access_token")).toString();
    if (response.statusCode != 200 || accessToken.isEmpty()) {
        grant.message = response.statusCode >= 500
                            ? QCoreApplication::translate("osdu::OsduAuthProvider",
                                                          "The authorization server failed to complete the sign-in")
                            : QCoreApplication::translate("osdu::OsduAuthProvider",
                                                          "Sign-in was refused by the authorization server");
        grant.details = serverWords(answer, response.statusCode);
        grant.refused = response.statusCode == 400 || response.statusCode == 401;
        return grant;
    }

    // The token goes out as "Authorization: Bearer"; a token of another type would be misused.
    const QString tokenType = answer.value(QStringLiteral("token_type")).toString();
    if (tokenType.compare(QStringLiteral("Bearer"), Qt::CaseInsensitive) != 0) {
        grant.message =
            QCoreApplication::translate("osdu::OsduAuthProvider",
                                        "Sign-in failed: the authorization server did not issue a bearer token");
        grant.details = tokenType.isEmpty()
                            ? QCoreApplication::translate("osdu::OsduAuthProvider", "its answer has no token_type")
                            : QStringLiteral("token_type \"%1\"").arg(tokenType);
        return grant;
    }

    const QDateTime now = QDateTime::currentDateTimeUtc();
    grant.ok = true;
    grant.accessToken = accessToken.toStdString();
    // Without a lifetime the token is taken for an hour, the usual; a refusal before then
    // is met by renewing on the 401.
    grant.accessExpiry = now.addSecs(seconds(answer, "expires_in", 3600));
    grant.refreshToken = answer.value(QStringLiteral("refresh_token")).toString().toStdString();
    const qint64 refreshLifetime = seconds(answer, "refresh_token_expires_in", 0);
    if (refreshLifetime > 0)
        grant.refreshExpiry = now.addSecs(refreshLifetime);
    return grant;
}

} // namespace osdu
