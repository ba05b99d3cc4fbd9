#pragma once

#include <QString>

#include <memory>

namespace emulator {
class FastEmulator;
class OsduEmulator;
} // namespace emulator

// How the demo's OSDU emulator behaves: how many datasets it holds, how far away it seems, and
// every how many data requests it turns one away with 429 (0: never).
struct OsduKnobs
{
    int datasets = 8;
    int latencyMs = 0;
    int throttleEvery = 0;
};

// The services the demo can run in its own process instead of real ones: the FAST emulator
// with its virtual drive, and the OSDU emulator with a few datasets, two of them registered in
// FAST beforehand. Everything lives under one work folder: the drive, sample volumes and the
// demo's settings store, which is written to point the panel at both emulators.
class DemoServices
{
public:
    explicit DemoServices(QString workFolder, OsduKnobs osdu = {});
    ~DemoServices();
    DemoServices(const DemoServices&) = delete;
    DemoServices& operator=(const DemoServices&) = delete;

    // Call before anything reads the settings. Makes the folders, starts both emulators and
    // writes the settings; false with a readable reason in error() when any of it failed.
    bool start();
    QString error() const { return m_error; }

    // A sample volume of the work folder (its bytes are never read).
    QString samplePath() const;

private:
    bool writeSamples();
    void writeSettings() const;
    bool registerDatasetsInFast();

    QString m_workFolder;
    OsduKnobs m_knobs;
    QString m_error;
    std::unique_ptr<emulator::FastEmulator> m_fast;
    std::unique_ptr<emulator::OsduEmulator> m_osdu;
};
