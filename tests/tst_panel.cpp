// The panel as the host sees it: the status line and fastConnected as FAST comes and goes,
// the routing of fillTrees and of the pages' signals, the project-folder watcher and an early
// destruction.

#include "FastEmulatorFixture.h"
#include "PanelDriver.h"

#include <fast/client/Fast.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/BackgroundWork.h>
#include <fast/panel/ControlNames.h>
#include <fast/panel/FastTabWidget.h>
#include <fast/panel/OsduWidget.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>
#include <osdu/HttpResponse.h>

#include <QtTest>
#include <QtWidgets>

namespace {

constexpr int kPoll = 7000; // one polling period and the requests
constexpr int kWellBeforeThePoll = 3000;

QString status(const fast::FastTabWidget& panel)
{
    return statusLabel(panel)->text();
}

} // namespace

class PanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statusFollowsTheServiceAndConnectedIsSentOnChange()
    {
        emulator::EmulatorOptions options;
        options.version = "3.1";
        options.pluginInstalled = false;
        FastEmulatorFixture fixture(options);
        fast::FastTabWidget panel(fixture.projectDir());
        QSignalSpy connected(&panel, &fast::FastTabWidget::fastConnected);
        fast::VdsWidget* local = localPage(panel);
        QCOMPARE(status(panel), "Checking connection to Bluware FAST™...");

        QTRY_COMPARE_WITH_TIMEOUT(status(panel), "Connected to Bluware FAST™ 3.1 but Korvane plugin is not available",
                                  kPoll);
        QVERIFY(connected.isEmpty()); // still false, as from the start
        QVERIFY(!local->treeView()->isEnabled() && !actionButton(*local)->isEnabled());

        fixture.emulator().service().setPluginInstalled(true);
        QTRY_COMPARE_WITH_TIMEOUT(status(panel), "Connected to Bluware FAST™ 3.1", kPoll);
        QCOMPARE(connected.size(), 1);
        QVERIFY(connected.first().first().toBool());
        QVERIFY(local->treeView()->isEnabled() && actionButton(*local)->isEnabled());

        fixture.emulator().stop();
        QTRY_COMPARE_WITH_TIMEOUT(status(panel), "Not connected to Bluware FAST™", kPoll);
        QCOMPARE(connected.size(), 2);
        QVERIFY(!connected.last().first().toBool());
        QVERIFY(!local->treeView()->isEnabled());
    }

    void fillTreesAndThePagesSignalsReachTheirPlaces()
    {
        FastEmulatorFixture fixture;
        auto client = fixture.client();
        client->mountFile(client->registerVds("/data/local.vds")->getMessage(), "l1", "", 0, 1, 0, 1, 0, 1);
        client->mountFile(client->registerVds("https://store.example/cloud")->getMessage(), "c1", "", 0, 1, 0, 1, 0, 1);

        fast::FastTabWidget panel(fixture.projectDir());
        panel.fillTrees({"/project/l1"}, {"/project/c1"});
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

        // What a page hands to the host or takes back goes out through the panel.
        QSignalSpy added(&panel, &fast::FastTabWidget::addToExtraDataManager);
        QSignalSpy removed(&panel, &fast::FastTabWidget::removeVdsFileFromProject);
        for (fast::FastWidget* page : panel.findChildren<fast::FastWidget*>()) {
            Q_EMIT page->addToExtraDataManager("a", fast::LOCAL_FILE);
            Q_EMIT page->removeVdsFileFromProject("r");
        }
        QCOMPARE(QList<int>({int(added.size()), int(removed.size())}), QList<int>({3, 3}));
    }

    void controlsTabsAndTheProjectWatcher()
    {
        // Nothing answers on the port the settings name: the panel polls no other service.
        FastEmulatorFixture fixture;
        fixture.emulator().stop();
        fast::FastTabWidget panel(fixture.projectDir());
        // Each name sits on the control a person would take for it, with its texts.
        QTabWidget* tabs = pageTabs(panel);
        QCOMPARE(QList<QWidget*>({tabs->widget(0), tabs->widget(1), tabs->widget(2), tabs->widget(3)}),
                 QList<QWidget*>({osduPage(panel), localPage(panel), cloudPage(panel), nullptr}));
        QCOMPARE(status(panel), "Checking connection to Bluware FAST™...");
        QCOMPARE(actionButton(*localPage(panel))->toolTip(), "Open VDS");
        QVERIFY(pathField(*localPage(panel))->isReadOnly());
        QCOMPARE(actionButton(*cloudPage(panel))->toolTip(), "Mount VDS");
        QVERIFY(!pathField(*cloudPage(panel))->isReadOnly());
        for (const fast::VdsWidget* page : {localPage(panel), cloudPage(panel)})
            QCOMPARE(page->findChild<fast::FastTreeView*>(fast::kVdsTree), page->treeView());
        const fast::OsduWidget& osdu = *osduPage(panel);
        QCOMPARE(providerChoice(osdu)->count(), 2);
        QCOMPARE(connectButton(osdu)->text() + searchButton(osdu)->text() + resultLabel(osdu),
                 "ConnectSearchNo results");
        QCOMPARE(osdu.findChild<fast::FastTreeView*>(fast::kOsduTree), osdu.treeView());

        QPixmap red(8, 8);
        red.fill(Qt::red);
        panel.setTabIcons({red, red});
        QVERIFY(!tabs->tabIcon(1).isNull() && tabs->tabIcon(2).isNull());
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
        const fast::SearchInput* search = searchInput(osdu);
        QTRY_VERIFY(search->isVisible());
        QVERIFY(search->width() >= search->fontMetrics().horizontalAdvance(search->placeholderText()) + 4);

        QSignalSpy update(&panel, &fast::FastTabWidget::updateProjectBrowser);
        QFile file(QDir(fixture.projectDir()).filePath("new.kv"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QTRY_VERIFY(!update.isEmpty());
    }

    void destroyingThePanelEndsItsWorkerAtOnce()
    {
        FastEmulatorFixture fixture;
        auto* panel = new fast::FastTabWidget(fixture.projectDir());
        QTRY_COMPARE_WITH_TIMEOUT(status(*panel), "Connected to Bluware FAST™ 2.0.0", kPoll);
        QVERIFY(!fast::waitForBackgroundWork(0));

        // The worker waits for its next poll now: destruction wakes it, well before the poll.
        delete panel;
        QVERIFY(fast::waitForBackgroundWork(kWellBeforeThePoll));
        QCOMPARE(fixture.requestLines().count("GET /api/v2/about"), 1);
    }
};

QTEST_MAIN(PanelTest)
#include "tst_panel.moc"
