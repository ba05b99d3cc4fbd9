#include "TestSettings.h"

#include <QCoreApplication>
#include <QSettings>

TestSettings::TestSettings()
{
    if (QCoreApplication::organizationName().isEmpty())
        QCoreApplication::setOrganizationName(QStringLiteral("FastPanelTests"));
    if (QCoreApplication::applicationName().isEmpty())
        QCoreApplication::setApplicationName(QStringLiteral("tests"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_folder.path());
    QSettings::setPath(QSettings::IniFormat, QSettings::SystemScope, m_folder.path() + "/system");
    QSettings().clear();
}

TestSettings::~TestSettings()
{
    QSettings().clear();
}

void TestSettings::set(const QString& group, const QString& key, const QString& value)
{
    QSettings settings;
    settings.setValue(group + '/' + key, value);
    settings.sync();
}

void TestSettings::remove(const QString& group, const QString& key)
{
    QSettings settings;
    settings.remove(group + '/' + key);
    settings.sync();
}
