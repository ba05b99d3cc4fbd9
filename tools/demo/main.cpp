// fast-panel-demo: a small host application around the FAST panel. It docks the panel, keeps a
// project (a folder and the files the panel added to it), shows the event bus and edits the
// FAST settings. With --emulators it runs the FAST and OSDU emulators in its own process and
// points its settings at them. With --screenshot or --tour it drives the panel by itself and
// takes pictures, headless when there is no display.

#include "DemoServices.h"
#include "DemoWindow.h"
#include "ScriptedTour.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

bool haveDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
           || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

int usageError(const QCommandLineParser& parser, const QString& message)
{
    std::fprintf(stderr, "fast-panel-demo: %s\n\n%s", qPrintable(message), qPrintable(parser.helpText()));
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    const bool headless = !haveDisplay();
    if (headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The demo's own settings store, which the library reads as the host's.
    QCoreApplication::setOrganizationName(QStringLiteral("FastPanel"));
    QCoreApplication::setApplicationName(QStringLiteral("fast-panel-demo"));
    QApplication app(argc, argv);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Plays the host application of the FAST panel. The FAST settings (host, port, mount point) "
                       "come from the demo's settings store; edit them with FAST > Settings."));
    parser.addHelpOption();
    const QCommandLineOption projectOption(
        "project", "The project folder (made if missing). Default: a fresh temporary folder, removed at exit.", "DIR");
    const QCommandLineOption screenshotOption(
        "screenshot",
        "Wait for FAST, register and mount one local volume, write a picture of the window to FILE and exit.", "FILE");
    const QCommandLineOption tourOption(
        "tour",
        "Like --screenshot, then unmount the volume again, sign in to OSDU (when its settings are there), search "
        "and mount a dataset; numbered pictures of every step go to DIR.",
        "DIR");
    const QCommandLineOption mountOption("mount",
                                         "The .vds file that --screenshot and --tour mount. Default: a made-up one.",
                                         "PATH");
    const QCommandLineOption emulatorsOption(
        "emulators",
        "Run the FAST and OSDU emulators in this process, with their virtual drive, sample volumes and the demo's "
        "settings (pointing at them) under DIR. --screenshot and --tour then mount one of the samples.",
        "DIR");
    parser.addOptions({projectOption, screenshotOption, tourOption, mountOption, emulatorsOption});
    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(parser, parser.errorText());
    if (parser.isSet("help")) {
        std::printf("%s", qPrintable(parser.helpText()));
        return 0;
    }
    if (!parser.positionalArguments().isEmpty())
        return usageError(parser, QStringLiteral("unexpected argument %1").arg(parser.positionalArguments().first()));

    TourOptions tour{parser.value(screenshotOption), parser.value(tourOption), parser.value(mountOption)};
    const bool scripted = !tour.screenshotFile.isEmpty() || !tour.tourDir.isEmpty();
    if (!tour.samplePath.isEmpty() && !scripted)
        return usageError(parser, QStringLiteral("--mount goes with --screenshot or --tour"));
    if (headless && !scripted)
        return usageError(parser, QStringLiteral("there is no display; use --screenshot or --tour to run headless"));

    std::unique_ptr<DemoServices> services;
    if (parser.isSet(emulatorsOption)) {
        services = std::make_unique<DemoServices>(parser.value(emulatorsOption));
        if (!services->start()) {
            std::fprintf(stderr, "fast-panel-demo: %s\n", qPrintable(services->error()));
            return 1;
        }
        if (scripted && tour.samplePath.isEmpty())
            tour.samplePath = services->samplePath();
    }

    std::unique_ptr<QTemporaryDir> temporaryProject;
    QString projectFolder = parser.value(projectOption);
    if (projectFolder.isEmpty()) {
        temporaryProject = std::make_unique<QTemporaryDir>(QDir::temp().filePath("fast-demo-project-XXXXXX"));
        if (!temporaryProject->isValid()) {
            std::fprintf(stderr, "fast-panel-demo: cannot make a project folder: %s\n",
                         qPrintable(temporaryProject->errorString()));
            return 1;
        }
        projectFolder = temporaryProject->path();
    } else if (!QDir().mkpath(projectFolder)) {
        std::fprintf(stderr, "fast-panel-demo: cannot make the project folder %s\n", qPrintable(projectFolder));
        return 1;
    }
    std::printf("fast-panel-demo: project folder %s\n", qPrintable(QDir(projectFolder).absolutePath()));
    std::fflush(stdout);

    DemoWindow window(projectFolder);
    window.show();

    std::unique_ptr<ScriptedTour> script;
    if (scripted) {
        script = std::make_unique<ScriptedTour>(&window, tour);
        QObject::connect(script.get(), &ScriptedTour::finished, &app,
                         [](int exitCode) { QCoreApplication::exit(exitCode); });
        QTimer::singleShot(0, script.get(), &ScriptedTour::start);
    }
    return app.exec();
}
