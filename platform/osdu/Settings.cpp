#include <osdu/Settings.h>

#include <QSettings>
#include <QString>
#include <QVariant>

namespace osdu {

std::string getSettingValue(const std::string& group, const std::string& key, const std::string& defaultValue)
{
    const QSettings settings;
    const QVariant value = settings.value(QString::fromStdString(group + '/' + key));
    if (!value.isValid())
        return defaultValue;
    return value.toString().toStdString();
}

} // namespace osdu
