// The cloud page while FAST fails: a mount through the dialog whose answers are lost, cut short,
// refused or late, the service killed halfway, a project folder that takes no link, and the
// tree's unmount and delete refused. Each case ends on what the user is told and on what FAST
// still holds afterwards.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "ShownVolume.h"
#include "StdMetaTypes.h"
#include "VdsPageSession.h"

#include <fast/fast.h>
#include <fast/trees/VdsTreeModel.h>

#include <QElapsedTimer>
#include <QFile>
#include <QPushButton>
#include <QtTest>

using emulator::Delivery;
using emulator::Fault;
using fast::VdsWidget;

namespace {

const QString kUrl = QStringLiteral("https://store.example/survey/cube");

// The id FAST gave the volume, as the page last sent it.
QString registeredId(const EventBusRecorder& bus)
{
    const QString prefix = "Successfully registered VDS (url=" + kUrl + ") in Bluware FAST™ with id=";
    for (const QString& note : bus.texts(Information)) {
        if (note.startsWith(prefix))
            return note.mid(prefix.size()).chopped(1);
    }
    return {};
}

QStringList driveFiles(const FastEmulatorFixture& fixture)
{
    return QDir(fixture.driveDir()).entryList(QDir::Files);
}

} // namespace

class FaultsFastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qRegisterMetaType<std::string>(); }

    void failedRegistrationIsRetriedOnTheNextClick_data();
    void failedRegistrationIsRetriedOnTheNextClick();
    void failedMountRequestLeavesNothingInFast_data();
    void failedMountRequestLeavesNothingInFast();
    void serviceKilledDuringTheMountStillHoldsTheVolumeWhenBack();
    void anAnswerBrokenOffAfterFastActedIsReadFromItsListing_data();
    void anAnswerBrokenOffAfterFastActedIsReadFromItsListing();
    void slowMountAnswerStillEndsTheMount();
    void projectFolderThatCannotBeWrittenUndoesTheMount();
    void treeHandlersCarryOnPastA500_data();
    void treeHandlersCarryOnPastA500();
};

void FaultsFastTest::failedRegistrationIsRetriedOnTheNextClick_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("note");
    const QString unexpected = "Unable to register VDS (url=%1) in Bluware FAST™. Unexpected error code: ";
    QTest::newRow("200 without id") << Fault{200, 0, std::string()}
                                    << "Unable to register VDS (url=%1) in Bluware FAST™ with empty id!";
    QTest::newRow("405") << failing(405) << "Unable to register VDS (url=%1) in Bluware FAST™: invalid parameters.";
    QTest::newRow("409") << failing(409) << "VDS (url=%1) already registered in Bluware FAST™.";
    QTest::newRow("500") << failing(500) << unexpected + "500.";
    // Reset before FAST saw the request: the next click registers anew.
    QTest::newRow("connection reset") << broken(Delivery::ResetConnection) << unexpected + "0.";
}

void FaultsFastTest::failedRegistrationIsRetriedOnTheNextClick()
{
    QFETCH(Fault, fault);
    QFETCH(QString, note);
    FastEmulatorFixture fixture;
    fixture.emulator().setFault("POST", "/api/v2/vds/", fault);
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    page.startMount(kUrl);
    QTRY_COMPARE(boxes.summaries(), QStringList(kRegistrationBox));
    QCOMPARE(bus.texts(Information), QStringList(note.arg(kUrl)));
    QVERIFY(!openMountDialog(&page.widget));
    QVERIFY(fixture.emulator().service().volumes().empty());
    // The record stays without an id, so that the next click tries again.
    QCOMPARE(page.model().vdsCount(), 1);
    QVERIFY(page.model().vdsAt(0)->vdsId.empty());

    fixture.emulator().clearFaults();
    bus.clear();
    page.startMount(kUrl);
    QTRY_VERIFY(openMountDialog(&page.widget));
    QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(1));
    QCOMPARE(bus.texts(Information), QStringList(QString("Successfully registered VDS (url=%1) in Bluware FAST™ with "
                                                         "id=%2.")
                                                     .arg(kUrl, q(fixture.emulator().service().volumes().at(0).id))));
    QCOMPARE(boxes.boxes().size(), 1);
}

void FaultsFastTest::failedMountRequestLeavesNothingInFast_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("body");
    QTest::newRow("500") << failing(500) << "500" << kInjectedBody;
    QTest::newRow("connection reset") << broken(Delivery::ResetConnection) << "0"
                                      << "";
}

void FaultsFastTest::failedMountRequestLeavesNothingInFast()
{
    QFETCH(Fault, fault);
    QFETCH(QString, status);
    QFETCH(QString, body);
    FastEmulatorFixture fixture;
    fixture.emulator().setFault("POST", "/api/v2/file/", fault);
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    page.startMount(kUrl);
    QTRY_VERIFY(openMountDialog(&page.widget));
    answerMountDialog(&page.widget, "cube", "Save");
    QTRY_COMPARE(boxes.summaries(), QStringList(kMountErrorBox.arg(status, body)));
    QCOMPARE(bus.texts(Error), QStringList(kMountErrorLine.arg(status, body)));
    QTRY_VERIFY(!openMountDialog(&page.widget));

    QCOMPARE(page.added.size(), 0);
    QCOMPARE(page.model().vdsCount(), 0);
    QVERIFY(bus.texts(Trace).contains("Call FAST REST API 173: method=DELETE, url=" + q(fixture.baseUrl())
                                      + "/api/v2/vds/" + registeredId(bus)));
    QVERIFY(fixture.emulator().service().volumes().empty());
    QVERIFY(fixture.emulator().service().files().empty());
    QCOMPARE(driveFiles(fixture), QStringList());
}

void FaultsFastTest::anAnswerBrokenOffAfterFastActedIsReadFromItsListing_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<Fault>("fault");
    QTest::newRow("registration cut short") << "/api/v2/vds/" << broken(Delivery::TruncatedBody);
    QTest::newRow("registration answered with a page") << "/api/v2/vds/" << answering("<html>OK</html>");
    QTest::newRow("mount cut short") << "/api/v2/file/" << broken(Delivery::TruncatedBody);
    QTest::newRow("mount answered null") << "/api/v2/file/" << answering("null");
}

void FaultsFastTest::anAnswerBrokenOffAfterFastActedIsReadFromItsListing()
{
    QFETCH(QString, route);
    QFETCH(Fault, fault);
    FastEmulatorFixture fixture;
    fixture.emulator().setFault("POST", route.toStdString(), fault);
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL);
    MessageBoxAnswerer boxes;

    page.startMount(kUrl);
    QTRY_VERIFY(openMountDialog(&page.widget));
    answerMountDialog(&page.widget, "cube", "Save");
    QTRY_COMPARE(page.added.size(), 1);
    QVERIFY(boxes.boxes().isEmpty());
    // The page holds the ids FAST gave, not what came back in their place.
    const auto volumes = fixture.emulator().service().volumes();
    const auto files = fixture.emulator().service().files();
    QCOMPARE(volumes.size(), std::size_t(1));
    QCOMPARE(files.size(), std::size_t(1));
    const fast::VdsModel record = *page.model().vdsAt(0);
    QCOMPARE(q(record.vdsId), q(volumes.front().id));
    QCOMPARE(q(record.files.at(0).fileId), q(files.front().id));
}

void FaultsFastTest::serviceKilledDuringTheMountStillHoldsTheVolumeWhenBack()
{
    FastEmulatorFixture fixture;
    Fault killed;
    killed.delayMs = 200;
    killed.stopsService = true;
    fixture.emulator().setFault("POST", "/api/v2/file/", killed);
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    page.startMount(kUrl);
    QTRY_VERIFY(openMountDialog(&page.widget));
    const QString vdsId = registeredId(bus);
    answerMountDialog(&page.widget, "cube", "Save");
    QTRY_COMPARE(boxes.summaries(), QStringList(kMountErrorBox.arg("0", "")));
    QCOMPARE(bus.texts(Error), QStringList(kMountErrorLine.arg("0", "")));
    QTRY_VERIFY(!openMountDialog(&page.widget));
    QVERIFY(!fixture.emulator().isRunning());
    QCOMPARE(page.added.size(), 0);
    // The page let go of the volume, but its unregistration found nobody listening.
    const QStringList traces = bus.texts(Trace);
    const int unregistration = traces.indexOf("Call FAST REST API 173: method=DELETE, url=" + q(fixture.baseUrl())
                                              + "/api/v2/vds/" + vdsId);
    QVERIFY(unregistration > 0);
    QCOMPARE(traces.value(unregistration + 1), "Response from FAST REST API: code=0, body=");
    QCOMPARE(page.model().vdsCount(), 0);

    // Back on the same port with what it held: the volume is found, not registered twice.
    fixture.emulator().clearFaults();
    fixture.emulator().start();
    QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(1));
    QVERIFY(fixture.emulator().service().files().empty());
    bus.clear();
    page.startMount(kUrl);
    QTRY_VERIFY(openMountDialog(&page.widget));
    QCOMPARE(bus.texts(Information), QStringList("Successfully found a VDS (url=" + kUrl
                                                 + ") already registered in Bluware FAST™ with id=" + vdsId + "."));
}

void FaultsFastTest::slowMountAnswerStillEndsTheMount()
{
    // No time-out guards a FAST request: however long the answer takes, the mount ends on it.
    constexpr int kDelayMs = 2500;
    FastEmulatorFixture fixture;
    Fault slow;
    slow.delayMs = kDelayMs;
    fixture.emulator().setFault("POST", "/api/v2/file/", slow);
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL);
    MessageBoxAnswerer boxes;
    EventBusRecorder bus;

    page.startMount(kUrl);
    QTRY_VERIFY(openMountDialog(&page.widget));
    QElapsedTimer clock;
    clock.start();
    answerMountDialog(&page.widget, "cube", "Save");
    QTRY_COMPARE(page.added.size(), 1);
    QVERIFY2(clock.elapsed() >= kDelayMs, qPrintable(QString::number(clock.elapsed())));

    QCOMPARE(page.added.first().at(0).toString(), "cube");
    QVERIFY(boxes.boxes().isEmpty());
    QVERIFY(bus.texts(Error).isEmpty());
}

void FaultsFastTest::projectFolderThatCannotBeWrittenUndoesTheMount()
{
    FastEmulatorFixture fixture;
    // Permission bits would not stop root, who runs the suite on CI; a file where the folder
    // should be stops everybody, FAST writing its link included.
    const QString project = fixture.projectDir() + "/locked";
    QFile blocker(project);
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL, project);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    page.startMount(kUrl);
    QTRY_VERIFY(openMountDialog(&page.widget));
    answerMountDialog(&page.widget, "cube", "Save");
    QCOMPARE(fixture.emulator().service().files().size(), std::size_t(1));
    const QString fileId = q(fixture.emulator().service().files().at(0).id);
    // Closing meanwhile would tell the page that nothing was mounted while FAST holds the file.
    fast::MountNewVolume* dialog = openMountDialog(&page.widget);
    dialog->reject();
    QVERIFY(dialog->isVisible());
    QCOMPARE(saveButton(*dialog)->text(), "Save");
    QVERIFY(!saveButton(*dialog)->isEnabled());

    // The rename gives up after ten seconds of retries.
    QTRY_COMPARE_WITH_TIMEOUT(boxes.boxes().size(), 1, 15000);
    QCOMPARE(boxes.summaries(), QStringList(kMountErrorBox.arg("200", fileId)));
    QCOMPARE(bus.texts(Error), QStringList("Bluware FAST™ error : impossible to rename remote file cube.kv"));
    QTRY_VERIFY(!openMountDialog(&page.widget));
    QCOMPARE(page.added.size(), 0);
    QCOMPARE(page.model().vdsCount(), 0);
    QVERIFY(fixture.emulator().service().files().empty());
    QVERIFY(fixture.emulator().service().volumes().empty());
    QCOMPARE(driveFiles(fixture), QStringList());
}

void FaultsFastTest::treeHandlersCarryOnPastA500_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QStringList>("deletes");
    QTest::newRow("unmount volume") << "unmountVds" << QStringList({"file/%2", "file/%3", "vds/%1"});
    QTest::newRow("delete its only file") << "deleteFile" << QStringList({"file/%2", "vds/%1"});
}

void FaultsFastTest::treeHandlersCarryOnPastA500()
{
    QFETCH(QString, signal);
    QFETCH(QStringList, deletes);
    FastEmulatorFixture fixture;
    ShownVolume shown(fixture, signal);
    QCOMPARE(shown.page.model().vdsCount(), 1);
    fixture.emulator().setFault("DELETE", "/api/v2/", failing(500));
    fixture.emulator().clearRequests();
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    shown.remove();

    // The user is told nothing and the tree goes on as if FAST had done it; FAST keeps it all.
    QStringList expected;
    for (const QString& path : deletes)
        expected << QString("DELETE /api/v2/" + path)
                        .replace("%1", q(shown.vdsId))
                        .replace("%2", q(shown.files.front().fileId))
                        .replace("%3", q(shown.files.back().fileId));
    QCOMPARE(fixture.requestLines(), expected);
    QCOMPARE(bus.texts(Trace).filter("Response from FAST REST API: code=500").size(), deletes.size());
    QVERIFY(bus.texts(Error).isEmpty());
    QVERIFY(boxes.boxes().isEmpty());
    QCOMPARE(shown.page.removed.size(), int(shown.files.size()));
    QCOMPARE(shown.page.model().vdsCount(), 0);
    QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(1));
    QCOMPARE(fixture.emulator().service().files().size(), shown.files.size());
}

QTEST_MAIN(FaultsFastTest)
#include "tst_faults_fast.moc"
