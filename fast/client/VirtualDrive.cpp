#include <fast/client/VirtualDrive.h>

#include <fast/client/Fast.h>

#include <osdu/Settings.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <regex>

namespace fast {

namespace {

const char* const kHostProjectExtension = ".kv";
const char* const kStorageDomainMarker = ".amazonaws";

QString cleanDrivePath(QString path)
{
    return QDir::cleanPath(path.replace(QLatin1Char('\\'), QLatin1Char('/')));
}

} // namespace

QString mountPoint()
{
    return cleanDrivePath(QString::fromStdString(osdu::getSettingValue(FAST_GROUP, FAST_MOUNT_POINT, "K:")));
}

bool isMountedInVirtualDrive(const QString& path)
{
    return cleanDrivePath(path).startsWith(mountPoint(), Qt::CaseInsensitive);
}

bool fileExistsInVirtualDrive(const QString& path)
{
    const QString name = QFileInfo(cleanDrivePath(path)).completeBaseName() + kHostProjectExtension;
    return QDir(mountPoint()).exists(name);
}

bool driveCanHoldFileName(const QString& name)
{
    static const QRegularExpression forbidden(QStringLiteral(R"([/\\:*?"<>|\x00-\x1F])"));
    // Windows counts the superscript digits one to three as port numbers too.
    static const QRegularExpression
        device(QStringLiteral("^(CON|PRN|AUX|NUL|CONIN\\$|CONOUT\\$|(COM|LPT)[1-9\u00B9\u00B2\u00B3])$"),
               QRegularExpression::CaseInsensitiveOption);
    if (name.trimmed().isEmpty() || name.contains(forbidden) || name.endsWith(QLatin1Char('.'))
        || name.endsWith(QLatin1Char(' ')))
        return false;
    // "CON.txt" and "con .vds" name the device as well.
    const QString stem = name.section(QLatin1Char('.'), 0, 0).trimmed();
    return !device.match(stem).hasMatch();
}

QString pathKey(const QString& path, PathRules rules)
{
    static const QRegularExpression url(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+://"));
    if (rules == PathRules::Exact || url.match(path).hasMatch())
        return path;
    return QString(path).replace(QLatin1Char('\\'), QLatin1Char('/')).toCaseFolded();
}

bool samePath(const QString& a, const QString& b, PathRules rules)
{
    return pathKey(a, rules) == pathKey(b, rules);
}

std::string modifyVdsFilepath(const std::string& path)
{
    if (path.empty())
        return {};

    static const std::regex s3Scheme("s3:");
    std::string url = std::regex_replace(path, s3Scheme, "https:");

    const std::string marker = kStorageDomainMarker;
    const std::size_t s3 = url.size() >= 2 ? url.find("s3") : std::string::npos;
    const std::size_t markerPosition = url.size() >= marker.size() ? url.find(marker) : std::string::npos;
    if (s3 != std::string::npos && markerPosition != std::string::npos) {
        const std::size_t eraseStart = s3 + 2;
        const std::size_t charactersLeft = url.size() - eraseStart;
        // Unsigned on purpose: a marker before the first "s3" wraps round, and everything after
        // that "s3" goes.
        url.erase(eraseStart, std::min(charactersLeft, markerPosition - eraseStart));
    }

    if (url.back() == '/')
        url.pop_back();
    return url;
}

} // namespace fast
