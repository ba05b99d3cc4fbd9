// The VDS pages end to end against the FAST emulator: register, mount through the dialog, cancel,
// unmount and delete, and list what the project holds. How they fail: tst_faults.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "TreeDump.h"
#include "VdsPageSession.h"

#include <fast/client/Fast.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeView.h>
#include <fast/trees/VdsTreeModel.h>
#include <osdu/HttpResponse.h>

#include <QtTest>
#include <QtWidgets>

using fast::VdsWidget;
using Page = VdsPageSession;

namespace {

const QString kUrl = QStringLiteral("https://store.example/cube");

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
    void typicalMountFromEitherPage_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("local file") << int(VdsWidget::LOCAL_FILE);
        QTest::newRow("cloud URL") << int(VdsWidget::CLOUD_URL);
    }

    void typicalMountFromEitherPage()
    {
        QFETCH(int, type);
        FastEmulatorFixture fixture;
        Page page(fixture, VdsWidget::eWidgetType(type));
        EventBusRecorder bus;
        const QString url = type == VdsWidget::LOCAL_FILE ? localVolume("cube.part.vds")
                                                          : "https://store.example/a/b/cube";

        page.startMount(url);
        QTRY_VERIFY(openMountDialog(&page.widget));
        answerMountDialog(&page.widget, "cube", "Save");
        QTRY_COMPARE(page.added.size(), 1);

        QCOMPARE(page.added.first().at(0).toString(), "cube");
        QCOMPARE(page.added.first().at(1).value<fast::eVdsLocation>(),
                 type == VdsWidget::LOCAL_FILE ? fast::LOCAL_FILE : fast::CLOUD_URL);
        const std::string vdsId = fixture.emulator().service().volumes().at(0).id;
        QCOMPARE(fixture.requestLines(),
                 QStringList({"GET /api/v2/file/", "GET /api/v2/vds/", "POST /api/v2/vds/",
                              q("GET /api/v2/plugin/Korvane?vdsId=" + vdsId), "POST /api/v2/file/"}));
        QVERIFY(
            bus.texts(Information)
                .contains(
                    QString("Successfully registered VDS (url=%1) in Bluware FAST™ with id=%2.").arg(url, q(vdsId))));
        QTRY_VERIFY(QFile::exists(fixture.projectDir() + "/cube"));
        const QString name = type == VdsWidget::LOCAL_FILE ? "cube.part.vds" : "abcube";
        QVERIFY2(dumpTree(page.model()).startsWith(name + "(0,-1) | (0,-1) | (0,-1)*\n  Files(0,-1)"),
                 qPrintable(dumpTree(page.model())));
        QCOMPARE(page.model().vdsAt(0)->files.size(), std::size_t(1));
    }

    void cancellingUnregistersOnlyAVolumeWithoutFiles()
    {
        FastEmulatorFixture fixture;
        Page page(fixture, VdsWidget::CLOUD_URL);
        page.startMount(kUrl);
        QTRY_VERIFY(openMountDialog(&page.widget));
        QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(1));
        answerMountDialog(&page.widget, "", "Cancel");
        QTRY_VERIFY(fixture.emulator().service().volumes().empty());
        QCOMPARE(page.model().vdsCount(), 0);

        page.startMount(kUrl);
        QTRY_VERIFY(openMountDialog(&page.widget));
        answerMountDialog(&page.widget, "first", "Save");
        QTRY_COMPARE(page.added.size(), 1);
        fixture.emulator().clearRequests();
        // The volume in the tree is reused, and kept once it has a file.
        page.startMount(kUrl);
        QTRY_VERIFY(openMountDialog(&page.widget));
        QCOMPARE(page.model().vdsCount(), 1);
        QVERIFY(!fixture.requestLines().contains("POST /api/v2/vds/"));
        answerMountDialog(&page.widget, "", "Cancel");
        QTRY_VERIFY(!openMountDialog(&page.widget));
        QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(1));
    }

    void initListsVolumesWithProjectFilesAndUnmountingRemovesTheirFiles()
    {
        FastEmulatorFixture fixture;
        auto client = fixture.client();
        const auto mount = [&client](const std::string& vdsId, const char* name) {
            return fast::VdsFile{client->mountFile(vdsId, name, "", 0, 1, 0, 1, 0, 1)->getMessage(), name};
        };
        const std::string vdsId = client->registerVds("/data/cube.part.vds")->getMessage();
        std::vector<fast::VdsFile> files = {mount(vdsId, "one"), mount(vdsId, "two"), mount(vdsId, "three")};
        mount(client->registerVds("/data/other.vds")->getMessage(), "in-other");
        mount(client->registerVds("https://store.example/a/b/cube")->getMessage(), "in-cloud");

        // Named after the file's base name on the local page: the cloud volume's "cube" is left out
        // as a second volume of the same name.
        Page local(fixture, VdsWidget::LOCAL_FILE);
        local.widget.init({"/project/two", "/project/in-cloud", "/project/unrelated"});
        QCOMPARE(local.model().vdsCount(), 1);
        QCOMPARE(local.model().vdsAt(0)->name, "cube");
        QCOMPARE(q(local.model().vdsAt(0)->url), "/data/cube.part.vds");
        Page cloud(fixture, VdsWidget::CLOUD_URL);
        cloud.widget.init({"C:/project/in-cloud"});
        QCOMPARE(cloud.model().vdsCount(), 1);
        QCOMPARE(cloud.model().vdsAt(0)->name, "abcube");

        // A volume that keeps other files stays; with its last files goes the volume.
        Q_EMIT local.widget.treeView()->deleteFile(vdsId, files[0]);
        QCOMPARE(fixture.emulator().service().volumes().size(), std::size_t(3));
        QCOMPARE(local.model().vdsCount(), 1);
        Q_EMIT local.widget.treeView()->unmountVds(vdsId, {files[1], files[2]});
        QStringList removed;
        for (const QList<QVariant>& arguments : local.removed)
            removed << arguments.at(0).toString();
        QCOMPARE(removed, QStringList({"one", "two", "three"}));
        QCOMPARE(fixture.holdings().filter(QString::fromStdString(vdsId)), QStringList());
        QCOMPARE(fixture.holdings().size(), 4);
        QCOMPARE(local.model().rowCount(), 0);
    }
};

QTEST_MAIN(VdsPageTest)
#include "tst_vdspage.moc"
