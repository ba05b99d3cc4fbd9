// The panel as the host sees it: the status line and fastConnected as FAST comes and goes,
// the routing of fillTrees, the project-folder watcher and an early destruction.

#include "FastEmulatorFixture.h"
#include "PanelDriver.h"

#include <fast/client/Fast.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/ControlNames.h>
#include <fast/panel/FastTabWidget.h>
#include <fast/panel/OsduWidget.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>
#include <osdu/HttpResponse.h>

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QtTest>

namespace {

constexpr int kPoll = 7000; // one polling period and the requests

QString status(const fast::FastTabWidget& panel)
{
    return statusLabel(panel)->text();
}

int threadCount()
{
    return QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

} // namespace

class PanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statusFollowsTheServiceAndConnectedIsSentOnChange();
    void fillTreesRoutesProjectFilesToTheVdsPages();
    void tabsAndIcons();
    void controlsAreFoundByTheirNames();
    void aFileInTheProjectFolderAsksForABrowserUpdate();
    void destroyingThePanelEndsItsWorker();
};

void PanelTest::statusFollowsTheServiceAndConnectedIsSentOnChange()
{
    emulator::EmulatorOptions options;
    options.version = "3.1";
    options.pluginInstalled = false;
    FastEmulatorFixture fixture(options);
    fast::FastTabWidget panel(fixture.projectDir());
    QSignalSpy connected(&panel, &fast::FastTabWidget::fastConnected);
    QCOMPARE(status(panel), "Checking connection to Bluware FAST™...");

    QTRY_COMPARE_WITH_TIMEOUT(status(panel), "Connected to Bluware FAST™ 3.1 but Korvane plugin is not available",
                              kPoll);
    QVERIFY(connected.isEmpty()); // still false, as from the start

    fixture.emulator().service().setPluginInstalled(true);
    QTRY_COMPARE_WITH_TIMEOUT(status(panel), "Connected to Bluware FAST™ 3.1", kPoll);
    QCOMPARE(connected.size(), 1);
    QCOMPARE(connected.first().first().toBool(), true);
    fast::VdsWidget* local = localPage(panel);
    QVERIFY(local->treeView()->isEnabled());

    fixture.emulator().stop();
    QTRY_COMPARE_WITH_TIMEOUT(status(panel), "Not connected to Bluware FAST™", kPoll);
    QCOMPARE(connected.size(), 2);
    QCOMPARE(connected.last().first().toBool(), false);
    QVERIFY(!local->treeView()->isEnabled());
}

void PanelTest::fillTreesRoutesProjectFilesToTheVdsPages()
{
    FastEmulatorFixture fixture;
    auto client = fixture.client();
    client->mountFile(client->registerVds("/data/local.vds")->getMessage(), "l1", "", 0, 1, 0, 1, 0, 1);
    client->mountFile(client->registerVds("https://store.example/cloud")->getMessage(), "c1", "", 0, 1, 0, 1, 0, 1);

    fast::FastTabWidget panel(fixture.projectDir());
    panel.fillTrees({"/project/l1"}, {"/project/c1"});
    const QList<fast::FastWidget*> pages = panel.findChildren<fast::FastWidget*>();
    QCOMPARE(pages.size(), 3);
    const auto names = [](fast::FastWidget* page) {
        QStringList result;
        for (const fast::VdsModel& record : page->treeView()->model()->vdsList())
            result << record.name;
        return result;
    };
    QCOMPARE(names(localPage(panel)), QStringList{"local"});
    QCOMPARE(names(cloudPage(panel)), QStringList{"cloud"});
    QCOMPARE(names(osduPage(panel)), QStringList{});

    panel.clearTrees();
    QCOMPARE(names(localPage(panel)), QStringList{});
}

void PanelTest::tabsAndIcons()
{
    TestSettings settings;
    QTemporaryDir project;
    fast::FastTabWidget panel(project.path());
    QTabWidget* tabs = pageTabs(panel);
    QCOMPARE(tabs->count(), 3);

    QPixmap red(8, 8);
    red.fill(Qt::red);
    panel.setTabIcons({red, red});
    QVERIFY(!tabs->tabIcon(1).isNull());
    QVERIFY(tabs->tabIcon(2).isNull());
    panel.setTabIcons({red, red, red, red});
    QVERIFY(!tabs->tabIcon(2).isNull());

    // At its size hint the three tabs show whole, without scroll arrows, and the search box its
    // placeholder.
    panel.resize(panel.sizeHint());
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QTabBar* bar = tabs->tabBar();
    QVERIFY2(bar->tabRect(2).right() < bar->width(), qPrintable(QString::number(bar->width())));
    for (const QToolButton* arrow : bar->findChildren<QToolButton*>())
        QVERIFY(!arrow->isVisible());
    tabs->setCurrentIndex(0);
    const fast::SearchInput* search = searchInput(*osduPage(panel));
    QTRY_VERIFY(search->isVisible());
    QVERIFY(search->width() >= search->fontMetrics().horizontalAdvance(search->placeholderText()) + 4);
}

void PanelTest::controlsAreFoundByTheirNames()
{
    TestSettings settings;
    QTemporaryDir project;
    fast::FastTabWidget panel(project.path());
    // Each name sits on the control a person would take for it.
    QTabWidget* tabs = pageTabs(panel);
    QCOMPARE(tabs->widget(0), osduPage(panel));
    QCOMPARE(tabs->widget(1), localPage(panel));
    QCOMPARE(tabs->widget(2), cloudPage(panel));
    QCOMPARE(status(panel), "Checking connection to Bluware FAST™...");

    QCOMPARE(actionButton(*localPage(panel))->toolTip(), "Open VDS");
    QVERIFY(pathField(*localPage(panel))->isReadOnly());
    QCOMPARE(actionButton(*cloudPage(panel))->toolTip(), "Mount VDS");
    QVERIFY(!pathField(*cloudPage(panel))->isReadOnly());
    for (const fast::VdsWidget* page : {localPage(panel), cloudPage(panel)})
        QCOMPARE(page->findChild<fast::FastTreeView*>(fast::kVdsTree), page->treeView());

    const fast::OsduWidget& osdu = *osduPage(panel);
    QCOMPARE(providerChoice(osdu)->count(), 2);
    QCOMPARE(connectButton(osdu)->text(), "Connect");
    QVERIFY(searchInput(osdu));
    QCOMPARE(searchButton(osdu)->text(), "Search");
    QCOMPARE(resultLabel(osdu), "No results");
    QCOMPARE(osdu.findChild<fast::FastTreeView*>(fast::kOsduTree), osdu.treeView());
}

void PanelTest::aFileInTheProjectFolderAsksForABrowserUpdate()
{
    TestSettings settings;
    QTemporaryDir project;
    fast::FastTabWidget panel(project.path());
    QSignalSpy update(&panel, &fast::FastTabWidget::updateProjectBrowser);
    QFile file(project.filePath("new.kv"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QTRY_VERIFY(!update.isEmpty());
}

void PanelTest::destroyingThePanelEndsItsWorker()
{
    FastEmulatorFixture fixture;
    auto* panel = new fast::FastTabWidget(fixture.projectDir());
    QTRY_COMPARE_WITH_TIMEOUT(status(*panel), "Connected to Bluware FAST™ 2.0.0", kPoll);
    const int polling = threadCount();

    // The worker is asleep now: destruction returns at once and the thread ends on its own.
    delete panel;
    QTRY_VERIFY_WITH_TIMEOUT(threadCount() < polling, kPoll);
}

QTEST_MAIN(PanelTest)
#include "tst_panel.moc"
