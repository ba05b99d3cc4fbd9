#include "FastEmulatorFixture.h"

#include <fast/client/Fast.h>

FastEmulatorFixture::FastEmulatorFixture(emulator::EmulatorOptions options)
{
    options.driveDir = m_drive.path().toStdString();
    m_emulator = std::make_unique<emulator::FastEmulator>(options);
    m_emulator->start();
    m_settings.set("FAST", "FAST_HOST", "127.0.0.1");
    m_settings.set("FAST", "FAST_PORT", QString::number(m_emulator->port()));
}

FastEmulatorFixture::~FastEmulatorFixture() = default;

std::shared_ptr<fast::Fast> FastEmulatorFixture::client() const
{
    return std::make_shared<fast::Fast>("127.0.0.1");
}

std::string FastEmulatorFixture::baseUrl() const
{
    return "http://127.0.0.1:" + std::to_string(m_emulator->port());
}

QStringList FastEmulatorFixture::requestLines() const
{
    QStringList lines;
    for (const emulator::LoggedRequest& request : m_emulator->requests())
        lines << QString::fromStdString(request.method + ' ' + request.target);
    return lines;
}

QStringList FastEmulatorFixture::holdings() const
{
    QStringList lines;
    for (const auto& volume : m_emulator->service().volumes())
        lines << QString::fromStdString(volume.id + " volume " + volume.url);
    for (const auto& file : m_emulator->service().files())
        lines << QString::fromStdString(file.id + " file " + file.path);
    return lines;
}
