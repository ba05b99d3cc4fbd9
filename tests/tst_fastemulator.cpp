// The FAST emulator as tests, benchmarks and the demo rely on it, where the client's tests do not
// reach: what it refuses, what unregistering takes along, its state across restarts, and an answer
// held back when it stops. Its injected faults: tst_faults. The files a mount leaves:
// tst_fastclient and the page tests.

#include "FastEmulatorFixture.h"

#include <osdu/CurlSession.h>

#include <QtTest>

using emulator::Fault;

namespace {

osdu::CurlResponse call(const FastEmulatorFixture& fixture, const char* method, const std::string& path,
                        const std::string& body = {})
{
    osdu::CurlSession session;
    session.setUrl(fixture.baseUrl() + path);
    session.setBody(body);
    const std::string verb = method;
    return verb == "POST" ? session.post() : verb == "DELETE" ? session.del() : session.get();
}

std::string mountBody(const std::string& vdsId, const std::string& name, const QString& linkPath,
                      const std::string& dim0 = R"({"max":9,"min":0})")
{
    return R"({"parameters":{"link_path":")" + linkPath.toStdString() + R"(","shortcut_base_path":"",)"
           + R"("subvolume":{"dim0":)" + dim0 + R"(,"dim1":{"max":9,"min":0},"dim2":{"max":9,"min":0}},)"
           + R"("vds-compression-tolerance":0},"path":"/)" + name + R"(","plugin":"Korvane","vdsId":")" + vdsId
           + R"("})";
}

std::string registerVolume(const FastEmulatorFixture& fixture, const std::string& url)
{
    return call(fixture, "POST", "/api/v2/vds/", R"({ "url": ")" + url + R"(" })").text;
}

} // namespace

class FastEmulatorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mountRefusesWhatTheServiceRefuses_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<int>("status");
        const auto mount = [](const char* name, const char* dim0 = R"({"max":9,"min":0})", const char* vdsId = "ID") {
            return QString::fromStdString(mountBody(vdsId, name, "/p", dim0));
        };
        QTest::newRow("not JSON") << "{" << 400;
        QTest::newRow("min above max") << mount("x", R"({"max":1,"min":2})") << 400;
        QTest::newRow("bound not an integer") << mount("x", R"({"max":"9","min":0})") << 400;
        QTest::newRow("bound beyond 64 bits") << mount("x", R"({"max":18446744073709551615,"min":0})") << 400;
        QTest::newRow("path with a folder") << mount("a/b") << 400;
        QTest::newRow("unknown volume") << mount("x", R"({"max":9,"min":0})", "nope") << 404;
        QTest::newRow("name taken") << mount("taken") << 409;
        QTest::newRow("broken plug-in query") << "GET /api/v2/plugin/Korvane?vdsId=%zz" << 400;
    }

    void mountRefusesWhatTheServiceRefuses()
    {
        QFETCH(QString, body);
        QFETCH(int, status);
        FastEmulatorFixture fixture;
        const std::string vdsId = registerVolume(fixture, "/data/a.vds");
        QCOMPARE(call(fixture, "POST", "/api/v2/file/", mountBody(vdsId, "taken", fixture.projectDir())).statusCode,
                 200);

        const osdu::CurlResponse refused =
            body.startsWith("GET ")
                ? call(fixture, "GET", body.mid(4).toStdString())
                : call(fixture, "POST", "/api/v2/file/",
                       body.replace("\"ID\"", QString::fromStdString('"' + vdsId + '"')).toStdString());
        QCOMPARE(refused.statusCode, status);
        QVERIFY(refused.text.find("\"error\"") != std::string::npos);
        QCOMPARE(fixture.emulator().service().files().size(), std::size_t(1));
    }

    void unregisteringTakesTheFilesAlongAndStateSurvivesARestart()
    {
        QTemporaryDir stateDir;
        emulator::EmulatorOptions options;
        options.stateFile = (stateDir.path() + "/state.json").toStdString();
        FastEmulatorFixture fixture(options);
        const std::string kept = registerVolume(fixture, "/data/kept.vds");
        const std::string gone = registerVolume(fixture, "/data/gone.vds");
        const std::string fileId =
            call(fixture, "POST", "/api/v2/file/", mountBody(kept, "k", fixture.projectDir())).text;
        call(fixture, "POST", "/api/v2/file/", mountBody(gone, "g1", fixture.projectDir()));
        call(fixture, "POST", "/api/v2/file/", mountBody(gone, "g2", fixture.projectDir()));
        QCOMPARE(call(fixture, "DELETE", "/api/v2/vds/" + gone).statusCode, 200);
        QCOMPARE(QDir(fixture.driveDir()).entryList(QDir::Files), QStringList{"k.kv"});
        QCOMPARE(fixture.emulator().service().files().size(), std::size_t(1));
        QCOMPARE(call(fixture, "GET", "/api/v2/plugin/Korvane?vdsId=" + gone).statusCode, 404);
        QCOMPARE(call(fixture, "GET", "/api/v2/plugin/Korvane?vdsId=" + kept).statusCode, 200);

        const std::string volumes = call(fixture, "GET", "/api/v2/vds/").text;
        const std::string files = call(fixture, "GET", "/api/v2/file/").text;
        fixture.emulator().stop();
        QCOMPARE(call(fixture, "GET", "/api/v2/about").statusCode, 0);
        options.port = fixture.emulator().port();
        options.driveDir = fixture.driveDir().toStdString();
        emulator::FastEmulator restarted(options);
        restarted.start();
        QCOMPARE(restarted.port(), options.port);
        QCOMPARE(call(fixture, "GET", "/api/v2/vds/").text, volumes);
        QCOMPARE(call(fixture, "GET", "/api/v2/file/").text, files);
        QCOMPARE(call(fixture, "DELETE", "/api/v2/file/" + fileId).statusCode, 200);
    }

    void stoppingDropsAnAnswerHeldBack()
    {
        FastEmulatorFixture fixture;
        fixture.emulator().setFault("GET", "/api/v2/about", Fault{std::nullopt, 60000, std::nullopt});
        QThread* stopper = QThread::create([&fixture] {
            while (fixture.emulator().requests().empty())
                QThread::msleep(5);
            fixture.emulator().stop();
        });
        stopper->start();
        const int status = call(fixture, "GET", "/api/v2/about").statusCode;
        QVERIFY(stopper->wait(10000));
        delete stopper;
        QCOMPARE(status, 0);
    }
};

QTEST_GUILESS_MAIN(FastEmulatorTest)
#include "tst_fastemulator.moc"
