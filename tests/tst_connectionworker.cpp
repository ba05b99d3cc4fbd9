// The connection check worker on its own thread, wired as the panel wires it.

#include "FastEmulatorFixture.h"

#include <fast/fast.h>

#include <QtTest>

#include <memory>

namespace {

// The worker on a fresh thread, with the panel's connections: heartBeat deletes the worker and
// quits the thread. What the thread emits is recorded through queued connections to an object of
// this thread: a QSignalSpy connects directly and would be filled on the worker's thread while
// the test reads it here.
struct WorkerThread
{
    explicit WorkerThread(std::shared_ptr<fast::Fast> client)
        : thread(new QThread), worker(new fast::CheckConnectionToFastWorker(std::move(client)))
    {
        QObject::connect(thread, &QThread::finished, &receiver, [this] { ++finished; });
        QObject::connect(worker, &fast::CheckConnectionToFastWorker::workFinished, &receiver,
                         [this](bool service, bool plugin, const QString& version) {
                             results.append(QVariantList{service, plugin, version});
                         });
        QObject::connect(worker, &fast::CheckConnectionToFastWorker::heartBeat, &receiver, [this] { ++beats; });
        QObject::connect(thread, &QThread::started, worker, &fast::CheckConnectionToFastWorker::run);
        QObject::connect(worker, &fast::CheckConnectionToFastWorker::heartBeat, worker, &QObject::deleteLater);
        QObject::connect(worker, &fast::CheckConnectionToFastWorker::heartBeat, thread, &QThread::quit);
        worker->moveToThread(thread);
        thread->start();
    }

    ~WorkerThread()
    {
        // quit() reaches the thread object queued on this thread, so keep the events flowing.
        thread->requestInterruption();
        if (!QTest::qWaitFor([this] { return thread->isFinished(); }, 10000))
            qWarning("the worker thread did not end within 10 s");
        thread->wait();
        delete thread;
    }

    QObject receiver;
    QThread* thread;
    fast::CheckConnectionToFastWorker* worker;
    QList<QVariantList> results;
    int beats = 0;
    int finished = 0;
};

} // namespace

class ConnectionWorkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsServiceAndPluginState_data();
    void reportsServiceAndPluginState();
    void emptyClientBeatsAtOnceAndEnds();
    void interruptionEndsTheThreadWithinAPollingPeriod();
};

void ConnectionWorkerTest::reportsServiceAndPluginState_data()
{
    QTest::addColumn<bool>("running");
    QTest::addColumn<bool>("plugin");
    QTest::addColumn<bool>("expectService");
    QTest::addColumn<bool>("expectPlugin");
    QTest::addColumn<QString>("expectVersion");
    QTest::newRow("service with plug-in") << true << true << true << true << "4.2.0";
    QTest::newRow("service without plug-in") << true << false << true << false << "4.2.0";
    QTest::newRow("service stopped") << false << true << false << false << "";
}

void ConnectionWorkerTest::reportsServiceAndPluginState()
{
    QFETCH(bool, running);
    QFETCH(bool, plugin);
    QFETCH(bool, expectService);
    QFETCH(bool, expectPlugin);
    QFETCH(QString, expectVersion);

    emulator::EmulatorOptions options;
    options.version = "4.2.0";
    options.pluginInstalled = plugin;
    FastEmulatorFixture fixture(options);
    if (!running)
        fixture.emulator().stop();

    WorkerThread polling(fixture.client());
    QTRY_COMPARE_WITH_TIMEOUT(polling.results.size(), 1, 5000);
    const QList<QVariant> result = polling.results.first();
    QCOMPARE(result.at(0).toBool(), expectService);
    QCOMPARE(result.at(1).toBool(), expectPlugin);
    QCOMPARE(result.at(2).toString(), expectVersion);
    QCOMPARE(polling.beats, 0);

    // Both requests are made on every poll, in this order, even when the first one failed.
    if (running) {
        const auto sent = fixture.emulator().requests();
        QCOMPARE(sent.size(), std::size_t(2));
        QCOMPARE(QString::fromStdString(sent[0].target), "/api/v2/about");
        QCOMPARE(QString::fromStdString(sent[1].target), "/api/v2/plugin/Korvane");
    }
}

void ConnectionWorkerTest::emptyClientBeatsAtOnceAndEnds()
{
    WorkerThread polling(nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(polling.finished, 1, 2000);
    QCOMPARE(polling.beats, 1);
    QCOMPARE(polling.results.size(), 0);
}

void ConnectionWorkerTest::interruptionEndsTheThreadWithinAPollingPeriod()
{
    FastEmulatorFixture fixture;
    WorkerThread polling(fixture.client());
    QTRY_COMPARE_WITH_TIMEOUT(polling.results.size(), 1, 5000);

    polling.thread->requestInterruption();
    const std::size_t requestsWhenAsked = fixture.emulator().requests().size();
    QTRY_COMPARE_WITH_TIMEOUT(polling.finished, 1, 7000);
    QCOMPARE(polling.beats, 1);
    // The request was seen before another poll began.
    QCOMPARE(fixture.emulator().requests().size(), requestsWhenAsked);
    QCOMPARE(polling.results.size(), 1);
}

QTEST_GUILESS_MAIN(ConnectionWorkerTest)
#include "tst_connectionworker.moc"
