// fast-panel-demo: a small host application around the FAST panel. It docks the panel, keeps a
// project (a folder and the files the panel added to it), shows the event bus and edits the
// FAST settings. With --emulators it runs the FAST and OSDU emulators in its own process and
// points its settings at them. With --screenshot or --tour it drives the panel by itself and
// takes pictures, headless when there is no display.

#include "DarkPalette.h"
#include "DemoServices.h"
#include "DemoWindow.h"
#include "ScriptedTour.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace {

bool haveDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
           || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

struct DemoOptions
{
    bool dark = false;
    QString projectFolder;
    QString emulatorsFolder;
    OsduKnobs osdu;
    TourOptions tour;

    bool scripted() const { return !tour.screenshotFile.isEmpty() || !tour.tourDir.isEmpty(); }
};

int usageError(const QCommandLineParser& parser, const QString& message)
{
    std::fprintf(stderr, "fast-panel-demo: %s\n\n%s", qPrintable(message), qPrintable(parser.helpText()));
    return 2;
}

// Reads the command line into options; the exit code when the program ends here (help, or a
// command line it cannot follow).
std::optional<int> readCommandLine(DemoOptions& options, bool headless)
{
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
    const QCommandLineOption darkOption("dark", "Show everything in the Fusion style on a dark palette.");
    // A platform far away and busy, to see the OSDU search's progress, retries and Cancel.
    const QCommandLineOption datasetsOption("osdu-datasets", "With --emulators: the OSDU datasets (default 8).", "N");
    const QCommandLineOption latencyOption("osdu-latency-ms", "With --emulators: added to every OSDU answer.", "MS");
    const QCommandLineOption throttleOption(
        "osdu-throttle-every", "With --emulators: every K-th OSDU data request is answered 429, Retry-After: 0.", "K");
    parser.addOptions({projectOption, screenshotOption, tourOption, mountOption, emulatorsOption, darkOption,
                       datasetsOption, latencyOption, throttleOption});
    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(parser, parser.errorText());
    if (parser.isSet("help")) {
        std::printf("%s", qPrintable(parser.helpText()));
        return 0;
    }
    if (!parser.positionalArguments().isEmpty())
        return usageError(parser, QStringLiteral("unexpected argument %1").arg(parser.positionalArguments().first()));

    options.dark = parser.isSet(darkOption);
    options.projectFolder = parser.value(projectOption);
    options.emulatorsFolder = parser.value(emulatorsOption);
    bool numbers = true;
    const auto number = [&parser, &numbers](const QCommandLineOption& option, int fallback) {
        bool ok = true;
        const int value = parser.isSet(option) ? parser.value(option).toInt(&ok) : fallback;
        numbers = numbers && ok && value >= 0;
        return value;
    };
    options.osdu = OsduKnobs{number(datasetsOption, options.osdu.datasets), number(latencyOption, 0),
                             number(throttleOption, 0)};
    if (!numbers)
        return usageError(parser, QStringLiteral("--osdu-datasets, --osdu-latency-ms and --osdu-throttle-every take "
                                                 "a number from 0"));
    options.tour = TourOptions{parser.value(screenshotOption), parser.value(tourOption), parser.value(mountOption)};
    if (!options.tour.samplePath.isEmpty() && !options.scripted())
        return usageError(parser, QStringLiteral("--mount goes with --screenshot or --tour"));
    if (headless && !options.scripted())
        return usageError(parser, QStringLiteral("there is no display; use --screenshot or --tour to run headless"));
    return std::nullopt;
}

// The project folder the options name, made if missing, or a fresh temporary one held by
// temporary; empty when neither could be made.
QString makeProjectFolder(const QString& wanted, std::unique_ptr<QTemporaryDir>& temporary)
{
    if (!wanted.isEmpty()) {
        if (QDir().mkpath(wanted))
            return wanted;
        std::fprintf(stderr, "fast-panel-demo: cannot make the project folder %s\n", qPrintable(wanted));
        return QString();
    }
    temporary = std::make_unique<QTemporaryDir>(QDir::temp().filePath("fast-demo-project-XXXXXX"));
    if (temporary->isValid())
        return temporary->path();
    std::fprintf(stderr, "fast-panel-demo: cannot make a project folder: %s\n", qPrintable(temporary->errorString()));
    return QString();
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

    DemoOptions options;
    if (const std::optional<int> exitCode = readCommandLine(options, headless))
        return *exitCode;

    if (options.dark) {
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        QApplication::setPalette(darkFusionPalette());
    }

    std::unique_ptr<DemoServices> services;
    if (!options.emulatorsFolder.isEmpty()) {
        services = std::make_unique<DemoServices>(options.emulatorsFolder, options.osdu);
        if (!services->start()) {
            std::fprintf(stderr, "fast-panel-demo: %s\n", qPrintable(services->error()));
            return 1;
        }
        if (options.scripted() && options.tour.samplePath.isEmpty())
            options.tour.samplePath = services->samplePath();
    }

    std::unique_ptr<QTemporaryDir> temporaryProject;
    const QString projectFolder = makeProjectFolder(options.projectFolder, temporaryProject);
    if (projectFolder.isEmpty())
        return 1;
    std::printf("fast-panel-demo: project folder %s\n", qPrintable(QDir(projectFolder).absolutePath()));
    std::fflush(stdout);

    DemoWindow window(projectFolder);
    window.show();

    std::unique_ptr<ScriptedTour> script;
    if (options.scripted()) {
        script = std::make_unique<ScriptedTour>(&window, options.tour);
        QObject::connect(script.get(), &ScriptedTour::finished, &app,
                         [](int exitCode) { QCoreApplication::exit(exitCode); });
        QTimer::singleShot(0, script.get(), &ScriptedTour::start);
    }
    return app.exec();
}
