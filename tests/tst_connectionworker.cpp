// The connection check worker on its own thread, wired as the panel wires it.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "PollingThread.h"

#include <QtTest>

class ConnectionWorkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyClientBeatsAtOnceAndEnds()
    {
        PollingThread polling(nullptr);
        QTRY_COMPARE_WITH_TIMEOUT(polling.finished, 1, 2000);
        QCOMPARE(polling.beats, 1);
        QCOMPARE(polling.results.size(), 0);
    }

    void interruptionEndsTheThreadWithinAPollingPeriod()
    {
        FastEmulatorFixture fixture;
        PollingThread polling(fixture.client());
        QTRY_COMPARE_WITH_TIMEOUT(polling.results.size(), 1, 5000);

        polling.thread()->requestInterruption();
        QTRY_COMPARE_WITH_TIMEOUT(polling.finished, 1, 7000);
        QCOMPARE(polling.beats, 1);
        // One poll, both requests in this order, and the interruption seen before another began.
        QCOMPARE(fixture.requestLines(), QStringList({"GET /api/v2/about", "GET /api/v2/plugin/Korvane"}));
        QCOMPARE(polling.results, QStringList("true true 2.0.0"));
    }

    void aVersionOfTheWrongShapeIsAPollWithoutService_data()
    {
        QTest::addColumn<QString>("body");
        QTest::newRow("array") << "[]";
        QTest::newRow("null version") << R"({"version": null})";
    }

    void aVersionOfTheWrongShapeIsAPollWithoutService()
    {
        QFETCH(QString, body);
        FastEmulatorFixture fixture;
        fixture.emulator().setFault("GET", "/api/v2/about", answering(body.toStdString()));
        EventBusRecorder bus;
        PollingThread polling(fixture.client());
        QTRY_COMPARE_WITH_TIMEOUT(polling.results.size(), 1, 5000);
        QCOMPARE(polling.results.first(), "false false ");
        // POCO's own words on the conversion it could not make.
        QVERIFY2(bus.texts(Trace).last().startsWith("Can not convert"), qPrintable(bus.texts(Trace).join('\n')));
        // Still polling: the loop went on to its sleep instead of ending.
        QCOMPARE(polling.beats, 0);
        QVERIFY(polling.thread()->isRunning());
    }
};

QTEST_GUILESS_MAIN(ConnectionWorkerTest)
#include "tst_connectionworker.moc"
