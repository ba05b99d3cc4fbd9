// The VDS pages end to end against the FAST emulator: register, mount through the dialog,
// unmount and delete, and every way registration and mounting can fail.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "PanelDriver.h"
#include "TreeDump.h"
#include "VdsPageSession.h"

#include <fast/client/Fast.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeView.h>
#include <fast/trees/VdsTreeModel.h>
#include <osdu/HttpResponse.h>

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using emulator::Fault;
using fast::VdsWidget;
using Page = VdsPageSession;

namespace {

QString q(const std::string& text)
{
    return QString::fromStdString(text);
}

QStringList wire(emulator::FastEmulator& emulator)
{
    QStringList lines;
    for (const auto& request : emulator.requests())
        lines << q(request.method + ' ' + request.target);
    return lines;
}

// A .vds file on disk for the file dialog to pick; the emulator does not read it.
QString localVolume(const QString& name)
{
    static QTemporaryDir samples;
    QFile file(samples.filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write the sample volume");
    return QFileInfo(file).canonicalFilePath();
}

} // namespace

class VdsPageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typicalMountFromEitherPage_data();
    void typicalMountFromEitherPage();
    void aVolumeAlreadyInTheTreeIsReused();
    void registrationRefusalsEndTheFlow_data();
    void registrationRefusalsEndTheFlow();
    void aBadPluginDescriptionUndoesTheRegistration();
    void cancellingAFirstMountUnregisters();
    void unmountingRemovesEveryFileFromTheProject();
    void deletingTheLastFileUnregistersTheVolume();
    void initListsOnlyVolumesWithProjectFiles();
};

void VdsPageTest::typicalMountFromEitherPage_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("local file") << int(VdsWidget::LOCAL_FILE);
    QTest::newRow("cloud URL") << int(VdsWidget::CLOUD_URL);
}

void VdsPageTest::typicalMountFromEitherPage()
{
    QFETCH(int, type);
    FastEmulatorFixture fixture;
    Page page(fixture, VdsWidget::eWidgetType(type));
    EventBusRecorder bus;
    const QString url = type == VdsWidget::LOCAL_FILE ? localVolume("cube.part.vds") : "https://store.example/a/b/cube";

    page.startMount(url);
    QTRY_VERIFY(openMountDialog(&page.widget));
    answerMountDialog(&page.widget, "cube", "Save");
    QTRY_COMPARE(page.added.size(), 1);

    QCOMPARE(page.added.first().at(0).toString(), "cube");
    QCOMPARE(page.added.first().at(1).value<fast::eVdsLocation>(), type == VdsWidget::LOCAL_FILE ? fast::LOCAL_FILE : fast::CLOUD_URL);
    const std::string vdsId = fixture.emulator().service().volumes().at(0).id;
    QCOMPARE(wire(fixture.emulator()),
             QStringList({"GET /api/v2/file/", "GET /api/v2/vds/", "POST /api/v2/vds/",
                          q("GET /api/v2/plugin/Korvane?vdsId=" + vdsId), "POST /api/v2/file/"}));
    QVERIFY(bus.texts(4).contains(QString("Successfully registered VDS (url=%1) in Bluware FAST™ with id=%2.").arg(url, q(vdsId))));
    QTRY_VERIFY(QFile::exists(fixture.projectDir() + "/cube"));
    const QString name = type == VdsWidget::LOCAL_FILE ? "cube.part.vds" : "abcube";
    QVERIFY2(dumpTree(page.model()).startsWith(name + "(0,-1) | (0,-1) | (0,-1)*\n  Files(0,-1)"), qPrintable(dumpTree(page.model())));
    QCOMPARE(page.model().vdsAt(0)->files.size(), std::size_t(1));
}

void VdsPageTest::aVolumeAlreadyInTheTreeIsReused()
{
    FastEmulatorFixture fixture;
    Page page(fixture, VdsWidget::CLOUD_URL);
    page.startMount("https://store.example/cube");
    QTRY_VERIFY(openMountDialog(&page.widget));
    answerMountDialog(&page.widget, "first", "Save");
    QTRY_COMPARE(page.added.size(), 1);
    fixture.emulator().clearRequests();

    page.startMount("https://store.example/cube");
    QTRY_VERIFY(openMountDialog(&page.widget));
    QCOMPARE(page.model().vdsCount(), 1);
    QVERIFY(!wire(fixture.emulator()).contains("POST /api/v2/vds/"));
    // Cancelling keeps a volume that has files.
    answerMountDialog(&page.widget, "", "Cancel");
    QTRY_VERIFY(!openMountDialog(&page.widget));
    QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(1));
}

void VdsPageTest::registrationRefusalsEndTheFlow_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("note");
    QTest::newRow("200 without id") << 200 << "" << "Unable to register VDS (url=%1) in Bluware FAST™ with empty id!";
    QTest::newRow("405") << 405 << "bad" << "Unable to register VDS (url=%1) in Bluware FAST™: invalid parameters.";
    QTest::newRow("409") << 409 << "dup" << "VDS (url=%1) already registered in Bluware FAST™.";
    QTest::newRow("500") << 500 << "boom" << "Unable to register VDS (url=%1) in Bluware FAST™. Unexpected error code: 500.";
}

void VdsPageTest::registrationRefusalsEndTheFlow()
{
    QFETCH(int, status);
    QFETCH(QString, body);
    QFETCH(QString, note);
    FastEmulatorFixture fixture;
    fixture.emulator().setFault("POST", "/api/v2/vds/", Fault{status, 0, body.toStdString()});
    Page page(fixture, VdsWidget::CLOUD_URL);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    page.startMount("https://store.example/cube");
    QTRY_COMPARE(boxes.boxes().size(), 1);
    QCOMPARE(boxes.summaries().first(), "Unable to register VDS: Korvane™ was unable to register VDS in Bluware FAST™.\n"
                                        "Please refer to Bluware FAST™ log files to get more information.");
    QVERIFY(bus.texts(4).contains(note.arg("https://store.example/cube")));
    QVERIFY(!openMountDialog(&page.widget));
    // The record stays without an id, so that a later click tries again.
    QCOMPARE(page.model().vdsCount(), 1);
    QVERIFY(page.model().vdsAt(0)->vdsId.empty());
}

void VdsPageTest::aBadPluginDescriptionUndoesTheRegistration()
{
    FastEmulatorFixture fixture;
    fixture.emulator().setFault("GET", "/api/v2/plugin/", Fault{404, 0, std::string("no description")});
    Page page(fixture, VdsWidget::CLOUD_URL);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    page.startMount("https://store.example/cube");
    QTRY_COMPARE(boxes.boxes().size(), 1);
    QCOMPARE(boxes.summaries().first(), "Unable to mount VDS: Korvane™ was unable to mount VDS in Bluware FAST™.\n"
                                        "Please refer to Bluware FAST™ and Korvane™ log files to get more information.");
    QVERIFY(fixture.emulator().service().volumes().empty());
    QCOMPARE(page.model().vdsCount(), 0);
    QCOMPARE(page.model().rowCount(), 0);
    QVERIFY(bus.texts(3).contains("FAST VDS onMountVds exception 277"));
    QVERIFY(bus.texts(1).last().endsWith(
        "in Bluware FAST™. Exception occurred: HTTP request failed with status=404, message=no description"));
}

void VdsPageTest::cancellingAFirstMountUnregisters()
{
    FastEmulatorFixture fixture;
    Page page(fixture, VdsWidget::CLOUD_URL);
    page.startMount("https://store.example/cube");
    QTRY_VERIFY(openMountDialog(&page.widget));
    QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(1));
    answerMountDialog(&page.widget, "", "Cancel");
    QTRY_VERIFY(fixture.emulator().service().volumes().empty());
    QCOMPARE(page.model().vdsCount(), 0);
}

void VdsPageTest::unmountingRemovesEveryFileFromTheProject()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    const std::string vdsId = client->registerVds("/data/cube.vds")->getMessage();
    std::vector<fast::VdsFile> files;
    for (const char* name : {"one", "two", "three"})
        files.push_back({client->mountFile(vdsId, name, "", 0, 1, 0, 1, 0, 1)->getMessage(), name});
    Page page(fixture, VdsWidget::LOCAL_FILE);
    page.widget.init({"/project/two"});
    QCOMPARE(page.model().vdsCount(), 1);

    Q_EMIT page.widget.treeView()->unmountVds(vdsId, files);
    QCOMPARE(page.removed.size(), 3);
    QCOMPARE(QStringList({page.removed[0][0].toString(), page.removed[1][0].toString(), page.removed[2][0].toString()}),
             QStringList({"one", "two", "three"}));
    QVERIFY(fixture.emulator().service().volumes().empty());
    QVERIFY(fixture.emulator().service().files().empty());
    QCOMPARE(page.model().rowCount(), 0);
}

void VdsPageTest::deletingTheLastFileUnregistersTheVolume()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    const std::string vdsId = client->registerVds("/data/cube.vds")->getMessage();
    fast::VdsFile first{client->mountFile(vdsId, "one", "", 0, 1, 0, 1, 0, 1)->getMessage(), "one"};
    fast::VdsFile second{client->mountFile(vdsId, "two", "", 0, 1, 0, 1, 0, 1)->getMessage(), "two"};
    Page page(fixture, VdsWidget::LOCAL_FILE);
    page.widget.init({"/project/one"});

    Q_EMIT page.widget.treeView()->deleteFile(vdsId, first);
    QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(1));
    QCOMPARE(page.model().vdsCount(), 1);
    fixture.emulator().clearRequests();

    Q_EMIT page.widget.treeView()->deleteFile(vdsId, second);
    QCOMPARE(wire(fixture.emulator()), QStringList({q("DELETE /api/v2/file/" + second.fileId), q("DELETE /api/v2/vds/" + vdsId)}));
    QCOMPARE(page.model().vdsCount(), 0);
    QCOMPARE(page.model().rowCount(), 0);
    QCOMPARE(page.removed.size(), 2);
    QCOMPARE(page.removed.last().at(0).toString(), "two");
}

void VdsPageTest::initListsOnlyVolumesWithProjectFiles()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    const std::pair<const char*, const char*> mounts[] = {
        {"/data/cube.part.vds", "in-local"}, {"/data/other.vds", "in-other"}, {"https://store.example/a/b/cube", "in-cloud"}};
    for (const auto& [url, file] : mounts)
        client->mountFile(client->registerVds(url)->getMessage(), file, "", 0, 1, 0, 1, 0, 1);

    // Named after the file's base name on the local page: the cloud volume's "cube" is left out
    // as a second volume of the same name.
    Page local(fixture, VdsWidget::LOCAL_FILE);
    local.widget.init({"/project/in-local", "/project/in-cloud", "/project/unrelated"});
    QCOMPARE(local.model().vdsCount(), 1);
    QCOMPARE(local.model().vdsAt(0)->name, "cube");
    QCOMPARE(q(local.model().vdsAt(0)->url), "/data/cube.part.vds");

    Page cloud(fixture, VdsWidget::CLOUD_URL);
    cloud.widget.init({"C:/project/in-cloud"});
    QCOMPARE(cloud.model().vdsCount(), 1);
    QCOMPARE(cloud.model().vdsAt(0)->name, "abcube");
}

QTEST_MAIN(VdsPageTest)
#include "tst_vdspage.moc"
