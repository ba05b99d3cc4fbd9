#pragma once

#include <QString>
#include <QTemporaryDir>

// Points the host's settings store (a default-constructed QSettings) at a fresh temporary
// folder for the life of the object, and starts it empty.
class TestSettings
{
public:
    TestSettings();
    ~TestSettings();
    TestSettings(const TestSettings&) = delete;
    TestSettings& operator=(const TestSettings&) = delete;

    void set(const QString& group, const QString& key, const QString& value);
    void remove(const QString& group, const QString& key);
    QString folder() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};
