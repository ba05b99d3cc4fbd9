#pragma once

#include <OsduEmulator.h>

#include <QString>

#include <memory>

class TestSettings;

// Starts an OSDU emulator with that many datasets and points the host's settings at it: sign-in
// the AWS way with the emulator's client id and secret, the answer awaited at callbackUrl on a
// free port, the data in its partition.
std::unique_ptr<emulator::OsduEmulator>
startOsduEmulator(TestSettings& settings, const emulator::OsduEmulatorOptions& options, int datasets,
                  const QString& callbackUrl = QStringLiteral("http://127.0.0.1"));
