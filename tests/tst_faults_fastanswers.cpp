// Answers FAST should not have given: 500 on every route, listings and descriptions that are
// not JSON, answers broken off, as the client, the status poll, the page's listing and the start
// of a mount meet them.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "PollingThread.h"
#include "StdMetaTypes.h"
#include "VdsPageSession.h"

#include <fast/fast.h>
#include <fast/trees/VdsTreeModel.h>

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>

#include <QElapsedTimer>
#include <QtTest>

using emulator::Delivery;
using emulator::Fault;
using fast::VdsWidget;

namespace {

const QString kUrl = QStringLiteral("https://store.example/survey/cube");
// Cut off in the middle of the second entry.
const std::string kGarbage = R"([{"id":"1","url":"/data/a.vds"},{"id":)";

// POCO's own words on text read as a listing, which the library passes on to the user.
QString complaintAbout(const std::string& text)
{
    try {
        Poco::JSON::Parser().parse(text).extract<Poco::JSON::Array::Ptr>();
    } catch (const Poco::Exception& failure) {
        return q(failure.message());
    }
    return {};
}

QString complaintAbout(const QString& text)
{
    return complaintAbout(text.toStdString());
}

// "kind: text" of every message on the bus, for whole-sequence comparisons.
QStringList kindsAndTexts(const EventBusRecorder& bus)
{
    QStringList lines;
    for (const auto& message : bus.messages())
        lines << QString::number(message.kind) + ": " + message.text;
    return lines;
}

} // namespace

class FaultsFastAnswersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qRegisterMetaType<std::string>(); }

    void statusPollReportsWhatFastAnswered_data();
    void statusPollReportsWhatFastAnswered();
    void everyClientOperationHandsBackA500_data();
    void everyClientOperationHandsBackA500();
    void listingFailuresLeaveThePageEmpty_data();
    void listingFailuresLeaveThePageEmpty();
    void failuresBeforeTheDialogLeaveNothingRegistered_data();
    void failuresBeforeTheDialogLeaveNothingRegistered();
    void aFailedLookupTakesOutOnlyTheRecordItAdded();
};

void FaultsFastAnswersTest::statusPollReportsWhatFastAnswered_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<int>("minimumMs");
    QTest::newRow("version 500") << "/api/v2/about" << failing(500) << "false true "
                                 << QStringList({"3: Call FAST REST API 43: method=GET, url=%1/api/v2/about",
                                                 "3: Response from FAST REST API: code=500, body=" + kInjectedBody,
                                                 "1: Unable to get FAST status: HTTP request failed with status=500"})
                                 << 0;
    QTest::newRow("plug-in 500") << "/api/v2/plugin/Korvane" << failing(500) << "true false 2.0.0"
                                 << QStringList({"3: Call FAST REST API 89: method=GET, url=%1/api/v2/plugin/Korvane",
                                                 "3: Response from FAST REST API: code=500, body=" + kInjectedBody})
                                 << 0;
    // No time-out: a late answer is still a good one.
    QTest::newRow("version 2 s late") << "/api/v2/about" << Fault{std::nullopt, 2000, std::nullopt} << "true true 2.0.0"
                                      << QStringList() << 2000;
}

void FaultsFastAnswersTest::statusPollReportsWhatFastAnswered()
{
    QFETCH(QString, route);
    QFETCH(Fault, fault);
    QFETCH(QString, result);
    QFETCH(QStringList, messages);
    QFETCH(int, minimumMs);
    FastEmulatorFixture fixture;
    fixture.emulator().setFault("GET", route.toStdString(), fault);
    EventBusRecorder bus;
    QElapsedTimer clock;
    clock.start();
    PollingThread polling(fixture.client());
    QTRY_COMPARE_WITH_TIMEOUT(polling.results.size(), 1, minimumMs + 5000);

    QVERIFY2(clock.elapsed() >= minimumMs, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(polling.results.first(), result);
    QCOMPARE(kindsAndTexts(bus), messages.replaceInStrings("%1", q(fixture.baseUrl())));
}

void FaultsFastAnswersTest::everyClientOperationHandsBackA500_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("outcome");
    const QString passedOn = "500 " + kInjectedBody;
    QTest::newRow("getVersion") << "getVersion"
                                << "no version";
    QTest::newRow("isKorvanePluginAvailable") << "isKorvanePluginAvailable"
                                              << "false";
    QTest::newRow("getVdsList") << "getVdsList" << passedOn;
    QTest::newRow("getFileList") << "getFileList" << passedOn;
    QTest::newRow("registerVds") << "registerVds" << passedOn;
    QTest::newRow("mountFile") << "mountFile" << passedOn;
    QTest::newRow("deleteFile") << "deleteFile" << passedOn;
    // The volume is asked to go although its file would not.
    QTest::newRow("unmountVds") << "unmountVds"
                                << "DELETE /api/v2/file/f1, DELETE /api/v2/vds/v1";
    QTest::newRow("getPluginDescription") << "getPluginDescription"
                                          << "threw: HTTP request failed with status=500, message=" + kInjectedBody;
    // The error body is an object where a listing should be.
    QTest::newRow("findVdsByUrl") << "findVdsByUrl"
                                  << "threw: " + complaintAbout(kInjectedBody);
}

void FaultsFastAnswersTest::everyClientOperationHandsBackA500()
{
    QFETCH(QString, operation);
    QFETCH(QString, outcome);
    FastEmulatorFixture fixture;
    for (const char* method : {"GET", "POST", "DELETE"})
        fixture.emulator().setFault(method, "/api/v2/", failing(500));
    const auto client = fixture.client();
    const auto answer = [](const std::shared_ptr<osdu::HttpResponse>& response) {
        return QString::number(response->getResponse()) + ' ' + q(response->getMessage());
    };

    QString actual;
    try {
        if (operation == "getVersion")
            actual = client->getVersion() ? "a version" : "no version";
        else if (operation == "isKorvanePluginAvailable")
            actual = client->isKorvanePluginAvailable() ? "true" : "false";
        else if (operation == "getVdsList")
            actual = answer(client->getVdsList());
        else if (operation == "getFileList")
            actual = answer(client->getFileList());
        else if (operation == "registerVds")
            actual = answer(client->registerVds("/data/a.vds"));
        else if (operation == "mountFile")
            actual = answer(client->mountFile("v1", "cube", "/project", 0, 1, 0, 1, 0, 1));
        else if (operation == "deleteFile")
            actual = answer(client->deleteFile("f1"));
        else if (operation == "unmountVds") {
            client->unmountVds("v1", {fast::VdsFile{"f1", "cube"}});
            actual = fixture.requestLines().join(", ");
        } else if (operation == "getPluginDescription")
            client->getPluginDescription("Korvane", "v1");
        else if (operation == "findVdsByUrl")
            client->findVdsByUrl("/data/a.vds");
    } catch (const Poco::Exception& failure) {
        actual = "threw: " + q(failure.message());
    } catch (const std::exception& failure) {
        actual = "threw: " + QString(failure.what());
    }
    QCOMPARE(actual, outcome);
    QVERIFY(fixture.emulator().service().volumes().empty());
}

void FaultsFastAnswersTest::listingFailuresLeaveThePageEmpty_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("trace");
    QTest::addColumn<QString>("complaint");
    const QString syntax = "FAST VDS init JSONException 365";
    const QString shape = "FAST VDS init exception 372";
    QTest::newRow("volume listing 500") << "/api/v2/vds/" << failing(500) << shape << complaintAbout(kInjectedBody);
    QTest::newRow("file listing 500") << "/api/v2/file/" << failing(500) << shape << complaintAbout(kInjectedBody);
    QTest::newRow("volume listing not JSON")
        << "/api/v2/vds/" << answering(kGarbage) << syntax << complaintAbout(kGarbage);
    QTest::newRow("file listing not JSON")
        << "/api/v2/file/" << answering(kGarbage) << syntax << complaintAbout(kGarbage);
    // A listing lost on the wire reads as an empty one: nothing to complain about.
    QTest::newRow("volume listing cut short") << "/api/v2/vds/" << broken(Delivery::TruncatedBody) << ""
                                              << "";
    QTest::newRow("file listing reset") << "/api/v2/file/" << broken(Delivery::ResetConnection) << ""
                                        << "";
}

void FaultsFastAnswersTest::listingFailuresLeaveThePageEmpty()
{
    QFETCH(QString, route);
    QFETCH(Fault, fault);
    QFETCH(QString, trace);
    QFETCH(QString, complaint);
    FastEmulatorFixture fixture;
    const auto client = fixture.client();
    client->mountFile(client->registerVds(kUrl.toStdString())->getMessage(), "cube", "", 0, 1, 0, 1, 0, 1);
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL);
    page.widget.init({"/project/cube"});
    QCOMPARE(page.model().vdsCount(), 1);

    fixture.emulator().setFault("GET", route.toStdString(), fault);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;
    page.widget.init({"/project/cube"});

    QCOMPARE(page.model().vdsCount(), 0);
    const QStringList traces = bus.texts(Trace);
    if (trace.isEmpty()) {
        QVERIFY(boxes.boxes().isEmpty());
        QVERIFY(bus.texts(Error).isEmpty());
        QVERIFY(traces.contains("Response from FAST REST API: code=0, body="));
        return;
    }
    const QString text = "Unable to parse JSON to get VDS list: " + complaint;
    QCOMPARE(traces.last(), trace);
    QCOMPARE(bus.texts(Error), QStringList(text));
    QTRY_COMPARE(boxes.summaries(), QStringList("Unable to list VDS: " + text));
}

void FaultsFastAnswersTest::failuresBeforeTheDialogLeaveNothingRegistered_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("trace");
    QTest::addColumn<QString>("error");
    const QString syntax = "FAST VDS onMountVds JSONException 261";
    const QString other = "FAST VDS onMountVds exception 277";
    // %1 the URL, %2 the id FAST gave the volume, if it got that far.
    const QString badJson = "Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. Exception occurred while parsing "
                            "JSON to get volume data from VDS: ";
    const QString failed = "Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. Exception occurred: ";
    const QString lost = failed + "HTTP request failed with status=0, message=";

    // The lookup of the URL among the registered volumes fails before anything is registered.
    QTest::newRow("lookup: file listing 500")
        << "/api/v2/file/" << failing(500) << other << failed + complaintAbout(kInjectedBody);
    QTest::newRow("lookup: volume listing 500")
        << "/api/v2/vds/" << failing(500) << other << failed + complaintAbout(kInjectedBody);
    QTest::newRow("lookup: file listing not JSON")
        << "/api/v2/file/" << answering(kGarbage) << syntax << badJson + complaintAbout(kGarbage);
    QTest::newRow("lookup: volume listing not JSON")
        << "/api/v2/vds/" << answering(kGarbage) << syntax << badJson + complaintAbout(kGarbage);
    // The volume is registered by then, and must be unregistered again.
    QTest::newRow("description not JSON")
        << "/api/v2/plugin/" << answering(kGarbage) << syntax << badJson + complaintAbout(kGarbage);
    QTest::newRow("description bound not a number")
        << "/api/v2/plugin/"
        << answering(
               R"({"properties":{"subvolume":{"properties":{"dim0":{"properties":{"min":{"default":"deep"}}}}}}})")
        << other << failed + [] {
               try {
                   return QString::number(std::stoi("deep"));
               } catch (const std::invalid_argument& failure) {
                   return QString(failure.what());
               }
           }();
    QTest::newRow("description cut short") << "/api/v2/plugin/" << broken(Delivery::TruncatedBody) << other << lost;
    QTest::newRow("description reset") << "/api/v2/plugin/" << broken(Delivery::ResetConnection) << other << lost;
}

void FaultsFastAnswersTest::failuresBeforeTheDialogLeaveNothingRegistered()
{
    QFETCH(QString, route);
    QFETCH(Fault, fault);
    QFETCH(QString, trace);
    QFETCH(QString, error);
    FastEmulatorFixture fixture;
    fixture.emulator().setFault("GET", route.toStdString(), fault);
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    page.startMount(kUrl);
    QTRY_COMPARE(boxes.summaries(), QStringList(kMountFailedBox));
    QVERIFY(!openMountDialog(&page.widget));
    QVERIFY(bus.texts(Trace).contains(trace));
    const QString description = "GET /api/v2/plugin/Korvane?vdsId=";
    const QStringList sent = fixture.requestLines();
    const QString vdsId = sent.filter(description).value(0).mid(description.size());
    QCOMPARE(bus.texts(Error), QStringList(error.arg(kUrl, vdsId)));

    QCOMPARE(page.model().vdsCount(), 0);
    QVERIFY(fixture.emulator().service().volumes().empty());
    // Only a volume that has an id is unregistered; never the whole collection.
    QCOMPARE(sent.filter("DELETE").join(", "), vdsId.isEmpty() ? QString() : "DELETE /api/v2/vds/" + vdsId);
}

void FaultsFastAnswersTest::aFailedLookupTakesOutOnlyTheRecordItAdded()
{
    FastEmulatorFixture fixture;
    VdsPageSession page(fixture, VdsWidget::CLOUD_URL);
    MessageBoxAnswerer boxes;
    // Refused by FAST: the record stays, without an id, for a later retry.
    const QString refused = "https://store.example/survey/refused";
    fixture.emulator().setFault("POST", "/api/v2/vds/", failing(500));
    page.startMount(refused);
    QTRY_COMPARE(boxes.summaries(), QStringList(kRegistrationBox));
    fixture.emulator().clearFaults();

    fixture.emulator().setFault("GET", "/api/v2/vds/", answering(kGarbage));
    page.startMount(kUrl);
    QTRY_COMPARE(boxes.boxes().size(), 2);
    QCOMPARE(boxes.summaries().last(), kMountFailedBox);
    QCOMPARE(page.model().vdsCount(), 1);
    QCOMPARE(q(page.model().vdsAt(0)->url), refused);
}

QTEST_MAIN(FaultsFastAnswersTest)
#include "tst_faults_fastanswers.moc"
