// The FAST client against the emulator: what goes over the wire, the trace lines it leaves on
// the host's event bus, and how failures come back.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "PanelTexts.h"

#include <fast/fast.h>

#include <Poco/Exception.h>

#include <QtTest>

#include <atomic>
#include <thread>

using emulator::Fault;

class FastClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void baseUrlFollowsThePortSettingAsItStands();
    void aVolumesLifeOverTheWire();
    void versionParsingFailuresAreReportedOrPassedThrough();
    void oneClientServesSeveralThreadsAtOnce();
};

void FastClientTest::baseUrlFollowsThePortSettingAsItStands()
{
    TestSettings settings;
    QCOMPARE(q(fast::Fast("localhost").baseUrl()), "http://localhost:27182");
    settings.set("FAST", "FAST_PORT", " 80 ");
    QCOMPARE(q(fast::Fast("localhost").baseUrl()), "http://localhost: 80 ");
}

// Registered, described, mounted, found by its URL and unmounted: the requests, their bodies and
// the trace lines, and refusals reported by status.
void FastClientTest::aVolumesLifeOverTheWire()
{
    FastEmulatorFixture fixture;
    emulator::VolumeExtent extent;
    extent.min[0] = 10;
    extent.max[0] = 20;
    extent.min[2] = 0.5;
    extent.max[2] = 99.5;
    fixture.emulator().service().setVolumeExtent("/data/a.vds", extent);
    auto client = fixture.client();
    auto bus = std::make_unique<EventBusRecorder>();

    const auto accepted = client->registerVds("/data/a.vds");
    const std::string vdsId = accepted->getMessage();
    QCOMPARE(accepted->getResponse(), 200);
    QCOMPARE(bus->allTexts(), QStringList({"Call FAST REST API 243: method=POST, url=" + q(fixture.baseUrl())
                                               + R"(/api/v2/vds/, body={ "url": "/data/a.vds" })",
                                           "Response from FAST REST API: code=200, body=" + q(vdsId)}));
    QCOMPARE(bus->texts(Trace).size(), 2);
    QCOMPARE(client->registerVds("/data/a.vds")->getResponse(), 409);
    // Not escaped: the quote makes the body invalid JSON, which the service refuses.
    QCOMPARE(client->registerVds("/data/with \"quote\".vds")->getResponse(), 405);
    QCOMPARE(q(fixture.emulator().requests().back().body), R"({ "url": "/data/with "quote".vds" })");

    const fast::SubvolumeRange range = client->getPluginDescription("Korvane", vdsId);
    QCOMPARE(QStringList({q(range.dim0Min), q(range.dim0Max), q(range.dim1Min), q(range.dim1Max), q(range.dim2Min),
                          q(range.dim2Max)}),
             QStringList({"10", "20", "0", "899", "0.5", "99.5"}));

    // Each separator is doubled before the JSON writer escapes it: four backslashes on the wire.
    fixture.emulator().clearRequests();
    const auto mounted = client->mountFile(vdsId, "cube", R"(C:\proj\a.lnk)", 1, 2, 3, 4, 5, 6);
    QCOMPARE(mounted->getResponse(), 200);
    QVERIFY(QFile::exists(fixture.driveDir() + "/cube.kv"));
    const QString body = R"({"parameters":{"link_path":"C:\\\\proj\\\\a.lnk","shortcut_base_path":"",)"
                         R"("subvolume":{"dim0":{"max":2,"min":1},"dim1":{"max":4,"min":3},"dim2":{"max":6,"min":5}},)"
                         R"("vds-compression-tolerance":0},"path":"/cube","plugin":"Korvane","vdsId":")"
                         + q(vdsId) + "\"}";
    QCOMPARE(fixture.requestLines(), QStringList("POST /api/v2/file/"));
    QCOMPARE(q(fixture.emulator().requests().at(0).body), body);

    // Found by the exact URL, after asking for the files, then the volumes.
    client->registerVds("/data/b.vds");
    fixture.emulator().clearRequests();
    bus = std::make_unique<EventBusRecorder>();
    const auto found = client->findVdsByUrl("/data/a.vds");
    QVERIFY(found);
    QCOMPARE(q(found->vdsId), q(vdsId));
    QCOMPARE(found->files.size(), std::size_t(1));
    QCOMPARE(q(found->files[0].fileId + ' ' + found->files[0].fileName), q(mounted->getMessage() + " cube"));
    QCOMPARE(fixture.requestLines(), QStringList({"GET /api/v2/file/", "GET /api/v2/vds/"}));
    QCOMPARE(bus->allTexts().first(),
             "Call FAST REST API 217: method=GET, url=" + q(fixture.baseUrl()) + "/api/v2/file/");
    QVERIFY(!client->findVdsByUrl("/data/A.vds"));
    QVERIFY(!client->findVdsByUrl("/data/a.vds/"));

    // Each file deleted, then the volume: a file FAST no longer knows must not stop the loop.
    std::vector<fast::VdsFile> files = found->files;
    files.push_back({"gone", "gone"});
    files.push_back(
        {client->mountFile(vdsId, "two", fixture.projectDir().toStdString(), 0, 1, 0, 1, 0, 1)->getMessage(), "two"});
    QCOMPARE(QDir(fixture.driveDir()).entryList(QDir::Files), QStringList({"cube.kv", "two.kv"}));
    fixture.emulator().clearRequests();
    bus = std::make_unique<EventBusRecorder>();
    client->unmountVds(vdsId, files);
    QStringList expected;
    for (const fast::VdsFile& file : files)
        expected << q("DELETE /api/v2/file/" + file.fileId);
    QCOMPARE(fixture.requestLines(), expected << q("DELETE /api/v2/vds/" + vdsId));
    const QStringList lines = bus->allTexts();
    QCOMPARE(lines.size(), 8);
    QCOMPARE(lines[0],
             q("Call FAST REST API 161: method=DELETE, url=" + fixture.baseUrl() + "/api/v2/file/" + files[0].fileId));
    QVERIFY(lines[3].startsWith("Response from FAST REST API: code=404, body="));
    QCOMPARE(fixture.holdings().size(), 1); // b.vds
    QVERIFY(QDir(fixture.driveDir()).entryList(QDir::Files).isEmpty());
    QCOMPARE(client->deleteFile("f1")->getResponse(), 404);
}

void FastClientTest::versionParsingFailuresAreReportedOrPassedThrough()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    const auto aboutAnswers = [&fixture](const char* body) {
        fixture.emulator().clearFaults();
        fixture.emulator().setFault("GET", "/api/v2/about", Fault{std::nullopt, 0, std::string(body)});
    };

    aboutAnswers("{}");
    QCOMPARE(client->getVersion(), std::optional<std::string>(""));

    aboutAnswers("<html>");
    EventBusRecorder bus;
    QVERIFY(!client->getVersion());
    const auto messages = bus.messages();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(QList<int>({messages[0].kind, messages[1].kind}), QList<int>({Trace, Error}));
    QVERIFY2(messages[1].text.startsWith("Unable to parse JSON to get FAST version: ")
                 && !messages[1].text.endsWith(": "),
             qPrintable(messages[1].text));

    aboutAnswers("[1]");
    QVERIFY_EXCEPTION_THROWN(client->getVersion(), Poco::BadCastException);
}

void FastClientTest::oneClientServesSeveralThreadsAtOnce()
{
    FastEmulatorFixture fixture;
    const auto client = fixture.client();
    std::atomic<int> answered{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 25; ++i)
                answered += client->getVersion() && client->getVdsList()->getResponse() == 200;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(answered.load(), 100);
}

QTEST_GUILESS_MAIN(FastClientTest)
#include "tst_fastclient.moc"
