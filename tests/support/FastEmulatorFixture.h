#pragma once

#include "TestSettings.h"

#include <FastEmulator.h>

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace fast {
class Fast;
}

// A running FAST emulator on a free loopback port with a fresh virtual-drive folder and project
// folder, and the host's settings pointing the client at it.
class FastEmulatorFixture
{
public:
    explicit FastEmulatorFixture(emulator::EmulatorOptions options = {});
    ~FastEmulatorFixture();

    emulator::FastEmulator& emulator() { return *m_emulator; }
    // A client made as the panel makes it, after the port setting was written.
    std::shared_ptr<fast::Fast> client() const;
    std::string baseUrl() const;
    // "METHOD target" of every request the emulator has logged, in order.
    QStringList requestLines() const;
    QString driveDir() const { return m_drive.path(); }
    QString projectDir() const { return m_project.path(); }
    TestSettings& settings() { return m_settings; }

private:
    TestSettings m_settings;
    QTemporaryDir m_drive;
    QTemporaryDir m_project;
    std::unique_ptr<emulator::FastEmulator> m_emulator;
};
