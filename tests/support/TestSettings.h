#pragma once

#include <QCoreApplication>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>

// Points the host's settings store (a default-constructed QSettings) at a fresh temporary
// folder for the life of the object, and starts it empty.
class TestSettings
{
public:
    TestSettings()
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
    ~TestSettings() { QSettings().clear(); }

    // Written at once (a QSettings writes when it goes).
    void set(const QString& group, const QString& key, const QString& value)
    {
        QSettings().setValue(group + '/' + key, value);
    }
    void remove(const QString& group, const QString& key) { QSettings().remove(group + '/' + key); }

private:
    QTemporaryDir m_folder;
};
