#pragma once

#include "MessageBoxAnswerer.h"

#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <functional>
#include <string>

class DemoWindow;

namespace fast {
class OsduWidget;
class VdsWidget;
} // namespace fast

struct TourOptions
{
    // The window once a volume is mounted.
    QString screenshotFile;
    // Numbered pictures of every step; the tour then also unmounts the volume, signs in to
    // OSDU, searches and mounts a dataset.
    QString tourDir;
    // The .vds to mount; a made-up one when empty.
    QString samplePath;
};

// Drives the panel as a user would, without a person: waits for FAST, registers and mounts one
// local volume (answering the mount dialog), optionally unmounts it and goes on to the OSDU
// page, and takes pictures on the way. It checks what the host must see at each step and fails
// with a readable reason. The OSDU steps live in ScriptedTourOsdu.cpp.
class ScriptedTour : public QObject
{
    Q_OBJECT

public:
    explicit ScriptedTour(DemoWindow* window, TourOptions options, QObject* parent = nullptr);

    void start();

Q_SIGNALS:
    void finished(int exitCode);

private:
    void waitUntil(const std::function<bool()>& done, int timeoutMs, const QString& what,
                   const std::function<void()>& next);
    // Lets layouts and paints catch up before a picture.
    void settleThen(const std::function<void()>& next);
    void afterConnectionCheck();
    // The volume to mount, made up when none was given; false once the tour has failed.
    bool prepareSample();
    void mount();
    void save();
    void afterMount();
    void unmount();
    void afterUnmount();

    void osduSignIn();
    void osduSearch();
    void afterOsduSearch();
    void osduMount();
    void afterOsduMount();

    void succeed();
    void fail(const QString& reason);

    bool shoot(const QString& file);
    bool shootStep(const QString& name);
    // The panel's pages; null when the panel is gone or looks otherwise.
    fast::VdsWidget* localVdsPage() const;
    fast::OsduWidget* osduSearchPage() const;
    static void say(const QString& text);

    DemoWindow* m_window;
    TourOptions m_options;
    QTemporaryDir m_sampleDir;
    QString m_sample;
    QString m_mountedName;
    QString m_removedName;
    QString m_osduFileName;
    std::string m_osduDatasetUrl;
    // What the panel said in message boxes, each answered as a person would.
    MessageBoxAnswerer m_boxes;
    bool m_done = false;
};
