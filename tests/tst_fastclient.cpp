// The FAST client against the emulator: what goes over the wire, the trace lines it leaves on
// the host's event bus, and how failures come back.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"

#include <fast/fast.h>

#include <Poco/Exception.h>

#include <QtTest>

#include <atomic>
#include <thread>

using emulator::Fault;

namespace {

constexpr int Error = 1;
constexpr int Trace = 3;

QString q(const std::string& text)
{
    return QString::fromStdString(text);
}

std::string registered(fast::Fast& client, const std::string& url)
{
    const auto response = client.registerVds(url);
    if (response->getResponse() != 200)
        throw std::runtime_error("registration failed: " + response->getMessage());
    return response->getMessage();
}

} // namespace

class FastClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void baseUrlFollowsThePortSettingAsItStands_data();
    void baseUrlFollowsThePortSettingAsItStands();
    void registrationSendsTheConcatenatedBodyAndTracesBothLines();
    void registrationRefusalsComeBackAsStatusCodes();
    void mountBodyHasSortedKeysAndDoubledWindowsSeparators();
    void findVdsByUrlAsksFilesThenVolumesAndMatchesExactly();
    void unmountDeletesEachFileThenTheVolume();
    void unmountWithoutFilesSendsOneDelete();
    void pluginDescriptionGivesTheDefaultExtent();
    void pluginDescriptionThrowsOnRefusal();
    void statusCallsAreSilentOnSuccess();
    void statusCallsTraceAfterAFailedCall();
    void versionParsingFailuresAreReportedInOrder();
    void versionOfANonObjectPassesTheBadCastThrough();
    void stoppedServiceGivesStatusZeroEverywhere();
    void malformedPortOnlyFailsTheTransfer();
    void oneClientServesSeveralThreadsAtOnce();
};

void FastClientTest::baseUrlFollowsThePortSettingAsItStands_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no setting") << QString() << "http://localhost:27182";
    QTest::newRow("8080") << "8080" << "http://localhost:8080";
    QTest::newRow("spaces kept") << " 80 " << "http://localhost: 80 ";
}

void FastClientTest::baseUrlFollowsThePortSettingAsItStands()
{
    QFETCH(QString, port);
    QFETCH(QString, expected);
    TestSettings settings;
    if (!port.isNull())
        settings.set("FAST", "FAST_PORT", port);
    QCOMPARE(q(fast::Fast("localhost").baseUrl()), expected);
}

void FastClientTest::registrationSendsTheConcatenatedBodyAndTracesBothLines()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    EventBusRecorder bus;

    const auto response = client->registerVds("/data/with \"quote\".vds");
    const auto sent = fixture.emulator().requests();
    QCOMPARE(sent.size(), std::size_t(1));
    QCOMPARE(q(sent[0].method), "POST");
    QCOMPARE(q(sent[0].target), "/api/v2/vds/");
    // Not escaped: the quote makes the body invalid JSON, which the service refuses.
    QCOMPARE(q(sent[0].body), R"({ "url": "/data/with "quote".vds" })");
    QCOMPARE(response->getResponse(), 405);

    bus.clear();
    const auto accepted = client->registerVds("/data/a.vds");
    QCOMPARE(accepted->getResponse(), 200);
    const QString url = q(fixture.baseUrl() + "/api/v2/vds/");
    QCOMPARE(bus.allTexts(),
             QStringList({"Call FAST REST API 243: method=POST, url=" + url + R"(, body={ "url": "/data/a.vds" })",
                          "Response from FAST REST API: code=200, body=" + q(accepted->getMessage())}));
    QCOMPARE(bus.texts(Trace).size(), 2);
}

void FastClientTest::registrationRefusalsComeBackAsStatusCodes()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    registered(*client, "https://bucket.example/cube");
    const auto again = client->registerVds("https://bucket.example/cube");
    QCOMPARE(again->getResponse(), 409);
    QVERIFY(!again->getMessage().empty());

    fixture.emulator().setFault("POST", "/api/v2/vds/", Fault{500, 0, std::string("boom")});
    const auto failed = client->registerVds("https://bucket.example/other");
    QCOMPARE(failed->getResponse(), 500);
    QCOMPARE(q(failed->getMessage()), "boom");
}

void FastClientTest::mountBodyHasSortedKeysAndDoubledWindowsSeparators()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    const std::string vdsId = registered(*client, "/data/a.vds");
    fixture.emulator().clearRequests();
    EventBusRecorder bus;

    const auto response = client->mountFile(vdsId, "cube", R"(C:\proj\a.lnk)", 1, 2, 3, 4, 5, 6);
    QCOMPARE(response->getResponse(), 200);

    // Each separator is doubled before the JSON writer escapes it: four backslashes on the wire.
    const QString body = R"({"parameters":{"link_path":"C:\\\\proj\\\\a.lnk","shortcut_base_path":"",)"
                         R"("subvolume":{"dim0":{"max":2,"min":1},"dim1":{"max":4,"min":3},"dim2":{"max":6,"min":5}},)"
                         R"("vds-compression-tolerance":0},"path":"/cube","plugin":"Korvane","vdsId":")"
                         + q(vdsId) + "\"}";
    const auto sent = fixture.emulator().requests();
    QCOMPARE(sent.size(), std::size_t(1));
    QCOMPARE(q(sent[0].method), "POST");
    QCOMPARE(q(sent[0].target), "/api/v2/file/");
    QCOMPARE(q(sent[0].body), body);
    QCOMPARE(bus.allTexts(),
             QStringList({"Call FAST REST API 143: method=POST, url=" + q(fixture.baseUrl()) + "/api/v2/file/, body=" + body,
                          "Response from FAST REST API: code=200, body=" + q(response->getMessage())}));
}

void FastClientTest::findVdsByUrlAsksFilesThenVolumesAndMatchesExactly()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    const std::string vdsId = registered(*client, "/data/a.vds");
    registered(*client, "/data/b.vds");
    const std::string fileId =
        client->mountFile(vdsId, "cube", fixture.projectDir().toStdString(), 0, 1, 0, 1, 0, 1)->getMessage();
    fixture.emulator().clearRequests();
    EventBusRecorder bus;

    const auto found = client->findVdsByUrl("/data/a.vds");
    QVERIFY(found);
    QCOMPARE(q(found->vdsId), q(vdsId));
    QCOMPARE(found->files.size(), std::size_t(1));
    QCOMPARE(q(found->files[0].fileId), q(fileId));
    QCOMPARE(q(found->files[0].fileName), "cube");

    const auto sent = fixture.emulator().requests();
    QCOMPARE(sent.size(), std::size_t(2));
    QCOMPARE(q(sent[0].target), "/api/v2/file/");
    QCOMPARE(q(sent[1].target), "/api/v2/vds/");
    const QStringList lines = bus.allTexts();
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines[0], "Call FAST REST API 217: method=GET, url=" + q(fixture.baseUrl()) + "/api/v2/file/");
    QVERIFY(lines[1].startsWith("Response from FAST REST API: code=200, body=[{"));
    QCOMPARE(lines[2], "Call FAST REST API 201: method=GET, url=" + q(fixture.baseUrl()) + "/api/v2/vds/");
    QVERIFY(lines[3].startsWith("Response from FAST REST API: code=200, body=[{"));

    QVERIFY(!client->findVdsByUrl("/data/A.vds"));
    QVERIFY(!client->findVdsByUrl("/data/a.vds/"));
}

void FastClientTest::unmountDeletesEachFileThenTheVolume()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    const std::string vdsId = registered(*client, "/data/a.vds");
    std::vector<fast::VdsFile> files;
    for (const char* name : {"one", "two"}) {
        const auto mounted = client->mountFile(vdsId, name, fixture.projectDir().toStdString(), 0, 1, 0, 1, 0, 1);
        files.push_back({mounted->getMessage(), name});
    }
    // A file FAST no longer knows must not stop the loop.
    files.insert(files.begin() + 1, fast::VdsFile{"gone", "gone"});
    fixture.emulator().clearRequests();
    EventBusRecorder bus;

    client->unmountVds(vdsId, files);

    const auto sent = fixture.emulator().requests();
    QCOMPARE(sent.size(), std::size_t(4));
    for (std::size_t i = 0; i < files.size(); ++i) {
        QCOMPARE(q(sent[i].method), "DELETE");
        QCOMPARE(q(sent[i].target), q("/api/v2/file/" + files[i].fileId));
    }
    QCOMPARE(q(sent[3].target), q("/api/v2/vds/" + vdsId));
    const QStringList lines = bus.allTexts();
    QCOMPARE(lines.size(), 8);
    QCOMPARE(lines[0], "Call FAST REST API 161: method=DELETE, url=" + q(fixture.baseUrl() + "/api/v2/file/" + files[0].fileId));
    QVERIFY(lines[3].startsWith("Response from FAST REST API: code=404, body="));
    QCOMPARE(lines[6], "Call FAST REST API 173: method=DELETE, url=" + q(fixture.baseUrl() + "/api/v2/vds/" + vdsId));
    QVERIFY(fixture.emulator().service().volumes().empty());
    QVERIFY(QDir(fixture.driveDir()).entryList(QDir::Files).isEmpty());
}

void FastClientTest::unmountWithoutFilesSendsOneDelete()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    const std::string vdsId = registered(*client, "/data/a.vds");
    fixture.emulator().clearRequests();
    EventBusRecorder bus;

    client->unmountVds(vdsId, {});
    const auto sent = fixture.emulator().requests();
    QCOMPARE(sent.size(), std::size_t(1));
    QCOMPARE(q(sent[0].method + " " + sent[0].target), q("DELETE /api/v2/vds/" + vdsId));
    QCOMPARE(bus.allTexts().size(), 2);

    fixture.emulator().clearRequests();
    QCOMPARE(client->deleteFile("f1")->getResponse(), 404);
    QCOMPARE(bus.allTexts()[2], "Call FAST REST API 187: method=DELETE, url=" + q(fixture.baseUrl()) + "/api/v2/file/f1");
}

void FastClientTest::pluginDescriptionGivesTheDefaultExtent()
{
    FastEmulatorFixture fixture;
    emulator::VolumeExtent extent;
    extent.min[0] = 10;
    extent.max[0] = 20;
    extent.max[1] = 30;
    extent.min[2] = 0.5;
    extent.max[2] = 99.5;
    fixture.emulator().service().setVolumeExtent("/data/a.vds", extent);
    auto client = fixture.client();
    const std::string vdsId = registered(*client, "/data/a.vds");
    EventBusRecorder bus;

    const fast::SubvolumeRange range = client->getPluginDescription("Korvane", vdsId);
    QCOMPARE(q(range.dim0Min), "10");
    QCOMPARE(q(range.dim0Max), "20");
    QCOMPARE(q(range.dim1Min), "0");
    QCOMPARE(q(range.dim1Max), "30");
    QCOMPARE(q(range.dim2Min), "0.5");
    QCOMPARE(q(range.dim2Max), "99.5");
    QCOMPARE(q(fixture.emulator().requests().back().target), q("/api/v2/plugin/Korvane?vdsId=" + vdsId));
    QCOMPARE(bus.allTexts().first(),
             "Call FAST REST API 260: method=GET, url=" + q(fixture.baseUrl() + "/api/v2/plugin/Korvane?vdsId=" + vdsId));
}

void FastClientTest::pluginDescriptionThrowsOnRefusal()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    fixture.emulator().setFault("GET", "/api/v2/plugin/", Fault{404, 0, std::string("no such volume")});
    try {
        client->getPluginDescription("Korvane", "nope");
        QFAIL("a 404 must throw");
    } catch (const std::exception& failure) {
        QCOMPARE(QString(failure.what()), "HTTP request failed with status=404, message=no such volume");
    }
}

void FastClientTest::statusCallsAreSilentOnSuccess()
{
    emulator::EmulatorOptions options;
    options.version = "3.1.4";
    FastEmulatorFixture fixture(options);
    auto client = fixture.client();
    EventBusRecorder bus;
    QCOMPARE(client->getVersion(), std::optional<std::string>("3.1.4"));
    QVERIFY(client->isKorvanePluginAvailable());
    QVERIFY(bus.messages().isEmpty());

    fixture.emulator().setFault("GET", "/api/v2/about", Fault{std::nullopt, 0, std::string("{}")});
    QCOMPARE(client->getVersion(), std::optional<std::string>(""));
}

void FastClientTest::statusCallsTraceAfterAFailedCall()
{
    emulator::EmulatorOptions options;
    options.pluginInstalled = false;
    FastEmulatorFixture fixture(options);
    auto client = fixture.client();
    EventBusRecorder bus;

    QVERIFY(!client->isKorvanePluginAvailable());
    const QStringList lines = bus.texts(Trace);
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines[0], "Call FAST REST API 89: method=GET, url=" + q(fixture.baseUrl()) + "/api/v2/plugin/Korvane");
    QVERIFY(lines[1].startsWith("Response from FAST REST API: code=404, body="));

    fixture.emulator().service().setPluginInstalled(true);
    QVERIFY(client->isKorvanePluginAvailable());
    QCOMPARE(bus.messages().size(), 2);
}

void FastClientTest::versionParsingFailuresAreReportedInOrder()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    fixture.emulator().setFault("GET", "/api/v2/about", Fault{std::nullopt, 0, std::string("<html>")});
    EventBusRecorder bus;

    QVERIFY(!client->getVersion());
    const auto messages = bus.messages();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(messages[0].kind, Trace);
    QCOMPARE(messages[0].text, "FAST version JSONException 70");
    QCOMPARE(messages[1].kind, Error);
    QVERIFY2(messages[1].text.startsWith("Unable to parse JSON to get FAST version: ")
                 && messages[1].text.size() > QString("Unable to parse JSON to get FAST version: ").size(),
             qPrintable(messages[1].text));
}

void FastClientTest::versionOfANonObjectPassesTheBadCastThrough()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    fixture.emulator().setFault("GET", "/api/v2/about", Fault{std::nullopt, 0, std::string("[1]")});
    QVERIFY_EXCEPTION_THROWN(client->getVersion(), Poco::BadCastException);
}

void FastClientTest::stoppedServiceGivesStatusZeroEverywhere()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    fixture.emulator().stop();
    EventBusRecorder bus;

    QVERIFY(!client->getVersion());
    const auto messages = bus.messages();
    QCOMPARE(messages.size(), 3);
    QCOMPARE(messages[0].kind, Trace);
    QCOMPARE(messages[0].text, "Call FAST REST API 43: method=GET, url=" + q(fixture.baseUrl()) + "/api/v2/about");
    QCOMPARE(messages[1].text, "Response from FAST REST API: code=0, body=");
    QCOMPARE(messages[2].kind, Error);
    QCOMPARE(messages[2].text, "Unable to get FAST status: HTTP request failed with status=0");

    QVERIFY(!client->isKorvanePluginAvailable());
    QCOMPARE(client->getVdsList()->getResponse(), 0);
    QCOMPARE(client->registerVds("/data/a.vds")->getResponse(), 0);
    QCOMPARE(client->mountFile("1", "a", "/p", 0, 1, 0, 1, 0, 1)->getResponse(), 0);
    QVERIFY(!client->findVdsByUrl("/data/a.vds"));
    QVERIFY_EXCEPTION_THROWN(client->getPluginDescription("Korvane", "1"), std::runtime_error);

    // The same port answers again once the service is back.
    fixture.emulator().start();
    QVERIFY(client->getVersion());
}

void FastClientTest::malformedPortOnlyFailsTheTransfer()
{
    TestSettings settings;
    settings.set("FAST", "FAST_PORT", "not a port");
    fast::Fast client("127.0.0.1");
    QCOMPARE(client.getAbout()->getResponse(), 0);
    QVERIFY(!client.getAbout()->getTransportError().empty());
    QVERIFY(!client.getVersion());
}

void FastClientTest::oneClientServesSeveralThreadsAtOnce()
{
    FastEmulatorFixture fixture;
    const auto client = fixture.client();
    std::atomic<int> answered{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 25; ++i) {
                if (client->getVersion() && client->getVdsList()->getResponse() == 200)
                    ++answered;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(answered.load(), 100);
}

QTEST_GUILESS_MAIN(FastClientTest)
#include "tst_fastclient.moc"
