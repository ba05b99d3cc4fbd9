// The connection worker's CPU use while nothing happens: the panel is open, FAST answers every
// poll, and for one minute (--seconds N to change it) the process does nothing else. FAST runs
// as its own process, so that only the worker's side is counted.

#include "BenchSettings.h"
#include "BenchSummary.h"

#include <fast/client/Fast.h>
#include <fast/panel/CheckConnectionToFastWorker.h>

#include <curl/curl.h>
#include <sys/resource.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr double kGoalPercentOfOneCore = 0.1;

double processCpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Starts the emulator program on a free port; returns the port, or 0 when it did not come up.
int startEmulator(QProcess& process, const QString& driveDir)
{
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(FASTPANEL_EMULATOR_PROGRAM), {"--port", "0", "--drive", driveDir});
    const QRegularExpression listening(QStringLiteral("listening on http://127\\.0\\.0\\.1:(\\d+)"));
    QByteArray output;
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 10000 && process.waitForReadyRead(1000)) {
        output += process.readAll();
        const QRegularExpressionMatch match = listening.match(QString::fromUtf8(output));
        if (match.hasMatch())
            return match.captured(1).toInt();
    }
    std::fprintf(stderr, "the emulator did not start: %s\n", output.constData());
    return 0;
}

int secondsFromArguments(const QStringList& arguments)
{
    const int at = static_cast<int>(arguments.indexOf(QStringLiteral("--seconds")));
    if (at < 0 || at + 1 >= arguments.size())
        return 60;
    bool ok = false;
    const int seconds = arguments.at(at + 1).toInt(&ok);
    if (!ok || seconds <= 0) {
        std::fprintf(stderr, "--seconds takes a positive whole number\n");
        std::exit(2);
    }
    return seconds;
}

void runEventLoopFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int seconds = secondsFromArguments(QCoreApplication::arguments());
    QTemporaryDir folder;
    useScratchSettings(folder.path());
    curl_global_init(CURL_GLOBAL_DEFAULT);

    QProcess emulator;
    const int port = startEmulator(emulator, folder.path() + "/drive");
    if (port == 0)
        return 1;
    QSettings().setValue(QStringLiteral("FAST/FAST_PORT"), QString::number(port));

    // Wired as the panel wires it.
    auto fast = std::make_shared<fast::Fast>("127.0.0.1");
    QThread thread;
    auto* worker = new fast::CheckConnectionToFastWorker(fast);
    int polls = 0;
    int answered = 0;
    QObject::connect(&thread, &QThread::started, worker, &fast::CheckConnectionToFastWorker::run);
    QObject::connect(worker, &fast::CheckConnectionToFastWorker::workFinished, &app,
                     [&polls, &answered](bool serviceAvailable, bool pluginAvailable, const QString&) {
                         ++polls;
                         answered += serviceAvailable && pluginAvailable ? 1 : 0;
                     });
    QObject::connect(worker, &fast::CheckConnectionToFastWorker::heartBeat, worker, &QObject::deleteLater);
    QObject::connect(worker, &fast::CheckConnectionToFastWorker::heartBeat, &thread, &QThread::quit);
    worker->moveToThread(&thread);
    thread.start();

    // The first poll (connection set-up, first use of the libraries) is not the idle state.
    runEventLoopFor(1000);
    const double cpuBefore = processCpuSeconds();
    QElapsedTimer wall;
    wall.start();
    runEventLoopFor(seconds * 1000);
    const double cpuSeconds = processCpuSeconds() - cpuBefore;
    const double wallSeconds = static_cast<double>(wall.elapsed()) / 1000.0;

    // The worker ends at its next wake-up; its heartBeat reaches quit() through this thread.
    thread.requestInterruption();
    QEventLoop ending;
    QObject::connect(&thread, &QThread::finished, &ending, &QEventLoop::quit);
    if (!thread.isFinished())
        ending.exec();
    thread.wait();
    emulator.terminate();
    emulator.waitForFinished(5000);
    curl_global_cleanup();

    const double percent = 100.0 * cpuSeconds / wallSeconds;
    const bool met = percent < kGoalPercentOfOneCore && answered == polls && polls > 0;
    std::printf("connection worker, idle for %.0f s: %d polls (%d answered), %.4f s of CPU = %.4f %% of one core "
                "(goal < %.1f %%)  %s\n",
                wallSeconds, polls, answered, cpuSeconds, percent, kGoalPercentOfOneCore, met ? "met" : "MISSED");
    addToBenchSummary("connection worker CPU, idle (% of one core)", percent, kGoalPercentOfOneCore,
                      met ? "met" : "MISSED");
    return met ? 0 : 1;
}
