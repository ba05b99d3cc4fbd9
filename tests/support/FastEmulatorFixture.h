#pragma once

#include "TestSettings.h"

#include <FastEmulator.h>
#include <fast/client/Fast.h>

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

Q_DECLARE_METATYPE(emulator::Fault)

// Faults to inject: a status with the emulator's own error body, a body of the test's choosing,
// an answer broken off.
inline emulator::Fault failing(int status)
{
    return {status, 0, {}};
}
inline emulator::Fault answering(const std::string& body)
{
    return {{}, 0, body};
}
inline emulator::Fault broken(emulator::Delivery delivery)
{
    return {{}, 0, {}, delivery};
}

// A running FAST emulator on a free loopback port with a fresh virtual-drive folder and project
// folder, and the host's settings pointing the client and the panel at it.
class FastEmulatorFixture
{
public:
    explicit FastEmulatorFixture(emulator::EmulatorOptions options = {})
    {
        options.driveDir = m_drive.path().toStdString();
        m_emulator = std::make_unique<emulator::FastEmulator>(options);
        m_emulator->start();
        m_settings.set("FAST", "FAST_HOST", "127.0.0.1");
        m_settings.set("FAST", "FAST_PORT", QString::number(m_emulator->port()));
        m_settings.set("FAST", "FAST_MOUNT_POINT", driveDir());
    }

    emulator::FastEmulator& emulator() { return *m_emulator; }
    // A client made as the panel makes it, after the port setting was written.
    std::shared_ptr<fast::Fast> client() const { return std::make_shared<fast::Fast>("127.0.0.1"); }
    std::string baseUrl() const { return "http://127.0.0.1:" + std::to_string(m_emulator->port()); }
    // "METHOD target" of every request the emulator has logged, in order.
    QStringList requestLines() const
    {
        QStringList lines;
        for (const emulator::LoggedRequest& request : m_emulator->requests())
            lines << QString::fromStdString(request.method + ' ' + request.target);
        return lines;
    }
    // "id volume url" and "id file path" of every volume and file the emulator holds.
    QStringList holdings() const
    {
        QStringList lines;
        for (const auto& volume : m_emulator->service().volumes())
            lines << QString::fromStdString(volume.id + " volume " + volume.url);
        for (const auto& file : m_emulator->service().files())
            lines << QString::fromStdString(file.id + " file " + file.path);
        return lines;
    }
    QString driveDir() const { return m_drive.path(); }
    QString projectDir() const { return m_project.path(); }
    TestSettings& settings() { return m_settings; }

private:
    TestSettings m_settings;
    QTemporaryDir m_drive;
    QTemporaryDir m_project;
    std::unique_ptr<emulator::FastEmulator> m_emulator;
};
