// Every user action of every page while FAST answers the route the action uses with something it
// should never send: shapes swapped, nulls, numbers for texts, keys missing, an empty or an HTML
// page, bytes that are not UTF-8, ten megabytes, an answer broken off. Each pair must end in a
// message the panel already uses (or in none where it is silent by design), leave the panel
// usable, and leave nothing in FAST that the panel can no longer undo.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "HostileAnswers.h"
#include "MessageBoxAnswerer.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "PollingThread.h"
#include "ShownVolume.h"
#include "VdsPageSession.h"

#include <fast/fast.h>
#include <fast/trees/FastTreeModel.h>

#include <osdu/FileCollection.h>
#include <osdu/HttpResponse.h>

#include <QPushButton>
#include <QRegularExpression>
#include <QtTest>

using emulator::Fault;
using fast::VdsWidget;

namespace {

// The local page differs from the cloud page only in how the user picks the volume; past that,
// FAST's answers go through the same code, which the cloud page's pairs take.
enum PageKind { CloudPage, OsduPage, NoPage };
const char* const kPageNames[] = {"cloud", "OSDU", ""};

const QString kUrl = QStringLiteral("https://store.example/survey/cube");
const std::string kKnownDataset = "https://store.example/osdu/known";
const std::string kNewDataset = "https://store.example/osdu/new";
// The panel's own texts for a FAST that misbehaves, placeholders open.
const QString kListingError = QStringLiteral("Unable to parse JSON to get VDS list: %1");
const QString kListingBox = "Unable to list VDS: " + kListingError;
const QString kMountFailed = QStringLiteral("Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. Exception ");
const QStringList kMountErrors = {kMountFailed + "occurred while parsing JSON to get volume data from VDS: %3",
                                  kMountFailed + "occurred: %3",
                                  kMountFailed + "while parsing JSON to get volume data from VDS: %3",
                                  kMountFailed + ": %3",
                                  kMountErrorLine,
                                  "Bluware FAST™ error : impossible to rename remote file %1.kv"};

void addColumns()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("route");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QStringList>("allowedBoxes");
    QTest::addColumn<QStringList>("allowedErrors");
}

// Every hostile answer on each route of one action, with the boxes and errors it may end in;
// ten megabytes once per action.
void addPairs(PageKind page, const QString& step, std::initializer_list<const char*> routes,
              const QStringList& boxes = {}, const QStringList& errors = {})
{
    for (const char* route : routes) {
        for (const auto& [name, fault] : hostileAnswers()) {
            if (qstrcmp(name, kTenMegabytes) == 0 && route != *routes.begin())
                continue;
            const QStringList methodAndPath = QString(route).split(' ');
            const QString tag = QString("%1 %2 %3: %4").arg(kPageNames[page], step, route, name).simplified();
            QTest::newRow(qPrintable(tag))
                << int(page) << step << methodAndPath.at(0) << methodAndPath.at(1) << fault << boxes << errors;
        }
    }
}

// Everything wrong with how the action ended, one line each: a box or an error the panel never
// words that way, a wait cursor or a modal window left, and what FAST was left holding.
QString wrongEnding(const MessageBoxAnswerer& boxes, const EventBusRecorder& bus, const QString& leftInFast = {})
{
    QFETCH(QStringList, allowedBoxes);
    QFETCH(QStringList, allowedErrors);
    QStringList wrong;
    for (const QString& box : madeFromNone(boxes.summaries(), allowedBoxes))
        wrong << "box: " + box.left(300);
    for (const QString& error : madeFromNone(bus.texts(Error), allowedErrors))
        wrong << "error: " + error.left(300);
    if (QApplication::overrideCursor())
        wrong << "override cursor left";
    if (const QWidget* modal = QApplication::activeModalWidget())
        wrong << "still open: " + modal->windowTitle();
    wrong << (leftInFast.isEmpty() ? QString() : "left in FAST: " + leftInFast);
    wrong.removeAll(QString());
    return wrong.join('\n');
}

// What FAST holds beyond before that the tree has no id for (no tree: anything new), and any
// request on a bare collection: what the panel can no longer undo, or must never ask.
QString leftInFast(FastEmulatorFixture& fixture, const QStringList& before, const fast::FastTreeModel* tree = nullptr)
{
    QStringList known;
    for (const fast::VdsModel& record : tree ? tree->vdsList() : QList<fast::VdsModel>()) {
        known << q(record.vdsId);
        for (const fast::VdsFile& file : record.files)
            known << q(file.fileId);
    }
    QStringList left;
    for (const QString& line : fixture.holdings()) {
        if (!before.contains(line) && !known.contains(line.section(' ', 0, 0)))
            left << line;
    }
    for (const QString& request : fixture.requestLines().filter(QRegularExpression("^DELETE /api/v2/(vds|file)/$")))
        left << "asked for " + request;
    return left.join(", ");
}

std::shared_ptr<osdu::StorageRecord> dataset(const std::string& name, const std::string& url)
{
    return std::make_shared<osdu::FileCollection>("opendes:dataset--FileCollection.Bluware.OpenVDS:" + name,
                                                  "osdu:wks:dataset--FileCollection.Bluware.OpenVDS:1.0.0", "{}", name,
                                                  "about " + name, osdu::DatasetProperties{url + "/", {}});
}

const auto kResults = std::make_shared<osdu::StorageRecordCollection>(
    osdu::StorageRecordCollection{dataset("known", kKnownDataset), dataset("new", kNewDataset)});

// A page of either kind over the fixture's emulator, connected and shown; the OSDU page shows
// both datasets, and mounts the one FAST does not know yet.
struct AnyPage
{
    AnyPage(FastEmulatorFixture& fixture, int kind, const QString& projectDir)
        : url(kind == CloudPage ? kUrl : q(kNewDataset)), projectDir(projectDir)
    {
        if (kind == CloudPage) {
            vds = std::make_unique<VdsPageSession>(fixture, VdsWidget::CLOUD_URL, projectDir);
            return;
        }
        osdu = std::make_unique<fast::OsduWidget>(fixture.client(), projectDir);
        osdu->setConnectedToFast(true);
        osdu->show();
        osdu->onSearchDone(kResults);
    }

    fast::FastWidget* widget() const { return vds ? static_cast<fast::FastWidget*>(&vds->widget) : osdu.get(); }
    fast::FastTreeModel& tree() const { return *widget()->treeView()->model(); }

    void startMount()
    {
        if (vds)
            return vds->startMount(url);
        for (const fast::VdsModel& record : tree().vdsList()) {
            if (q(record.url) == url)
                return osdu->onMountVds(projectDir, record);
        }
    }

    QString url;
    QString projectDir;
    std::unique_ptr<VdsPageSession> vds;
    std::unique_ptr<fast::OsduWidget> osdu;
};

} // namespace

class FaultsCampaignTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_fixture = std::make_unique<FastEmulatorFixture>(); }
    void init();
    void cleanup();
    void cleanupTestCase();

    void listingShowsOnlyWhatFastHolds_data();
    void listingShowsOnlyWhatFastHolds();
    void mountEndsInTheDialogOrAWordAndLeavesNothing_data();
    void mountEndsInTheDialogOrAWordAndLeavesNothing();
    void treeRemovalsGoOnSilently_data();
    void treeRemovalsGoOnSilently();
    void searchCompletionShowsEveryResult_data();
    void searchCompletionShowsEveryResult();
    // Last: a poll that brings the process down ends the campaign.
    void connectionPollReportsTheAnswer_data();
    void connectionPollReportsTheAnswer();

private:
    void setFault();

    int m_pairs = 0;
    // One emulator for the whole campaign: stopping one takes a quarter of a second.
    std::unique_ptr<FastEmulatorFixture> m_fixture;
    // A fresh folder per pair: links FAST writes late must not meet the next pair's mount.
    std::unique_ptr<QTemporaryDir> m_project;
    // A poller sleeps five seconds between polls: they all end together, at the end.
    std::vector<std::unique_ptr<PollingThread>> m_pollers;
};

void FaultsCampaignTest::init()
{
    emulator::FastEmulator& emulator = m_fixture->emulator();
    emulator.clearFaults();
    for (const auto& file : emulator.service().files())
        emulator.service().handle("DELETE", "/api/v2/file/" + file.id, {});
    for (const auto& volume : emulator.service().volumes())
        emulator.service().handle("DELETE", "/api/v2/vds/" + volume.id, {});
    emulator.clearRequests();
    m_project = std::make_unique<QTemporaryDir>();
    ++m_pairs;
}

void FaultsCampaignTest::cleanup()
{
    // A pair that left the wait cursor has failed already; the next ones must not fail for it.
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
}

void FaultsCampaignTest::cleanupTestCase()
{
    for (const auto& poller : m_pollers)
        poller->thread()->requestInterruption();
    m_pollers.clear();
    qInfo("hostile-service campaign: %d pairs tried", m_pairs);
}

void FaultsCampaignTest::setFault()
{
    QFETCH(QString, method);
    QFETCH(QString, route);
    QFETCH(Fault, fault);
    m_fixture->emulator().setFault(method.toStdString(), route.toStdString(), fault);
}

void FaultsCampaignTest::listingShowsOnlyWhatFastHolds_data()
{
    addColumns();
    addPairs(CloudPage, "init", {"GET /api/v2/file/", "GET /api/v2/vds/"}, {kListingBox}, {kListingError});
}

void FaultsCampaignTest::listingShowsOnlyWhatFastHolds()
{
    const auto client = m_fixture->client();
    client->mountFile(client->registerVds(kUrl.toStdString())->getMessage(), "cube", "", 0, 1, 0, 1, 0, 1);
    VdsPageSession session(*m_fixture, VdsWidget::CLOUD_URL, m_project->path());
    setFault();
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    session.widget.init({m_project->path() + "/cube"});

    const QString wrong = wrongEnding(boxes, bus);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    // The volume under FAST's id, or nothing when the listing could not be read.
    const auto shown = session.model().vdsAt(0);
    QVERIFY(session.model().vdsCount() <= 1);
    QVERIFY(!shown || shown->vdsId == m_fixture->emulator().service().volumes().at(0).id);
}

void FaultsCampaignTest::mountEndsInTheDialogOrAWordAndLeavesNothing_data()
{
    addColumns();
    const QStringList refused = {kRegistrationBox, kMountFailedBox};
    addPairs(CloudPage, "mount", {"GET /api/v2/file/", "GET /api/v2/vds/", "POST /api/v2/vds/", "GET /api/v2/plugin/"},
             refused, kMountErrors);
    // The OSDU page takes FAST's ids from the search and looks nothing up before registering.
    addPairs(OsduPage, "mount", {"POST /api/v2/vds/", "GET /api/v2/plugin/"}, refused, kMountErrors);
    for (PageKind page : {CloudPage, OsduPage}) {
        addPairs(page, "Save", {"POST /api/v2/file/"}, {kMountErrorBox}, kMountErrors);
        // Like the tree's own handlers, a cancel that FAST refuses goes unreported.
        addPairs(page, "Cancel", {"DELETE /api/v2/vds/"});
    }
}

void FaultsCampaignTest::mountEndsInTheDialogOrAWordAndLeavesNothing()
{
    QFETCH(int, page);
    QFETCH(QString, step);
    AnyPage session(*m_fixture, page, m_project->path());
    const QStringList empty = m_fixture->holdings();
    if (step != "mount") {
        session.startMount();
        QTRY_VERIFY(openMountDialog(session.widget()));
    }
    const QStringList before = m_fixture->holdings();
    QSignalSpy added(session.widget(), &fast::FastWidget::addToExtraDataManager);
    setFault();
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    if (step == "mount")
        session.startMount();
    else
        answerMountDialog(session.widget(), "cube", step);
    // A link that never comes is waited for ten seconds.
    QTRY_VERIFY_WITH_TIMEOUT(bool(openMountDialog(session.widget())) == (step == "mount")
                                 || !boxes.summaries().isEmpty(),
                             15000);
    const bool dialogOpened = openMountDialog(session.widget());
    // A mount that got as far as the dialog is cancelled, which must take its registration along.
    answerMountDialog(session.widget(), "", "Cancel");
    QTRY_VERIFY(!openMountDialog(session.widget()));

    const bool reached = step == "mount" ? dialogOpened : step == "Save" ? added.size() == 1 : true;
    QVERIFY2(reached || !boxes.summaries().isEmpty(), "the action ended without its result or a word");
    // A refused cancel may leave what FAST held, but nothing more; a saved file stays, in the tree.
    const QString left = step == "Cancel" ? leftInFast(*m_fixture, before)
                                          : leftInFast(*m_fixture, empty, step == "Save" ? &session.tree() : nullptr);
    const QString wrong = wrongEnding(boxes, bus, left);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

void FaultsCampaignTest::treeRemovalsGoOnSilently_data()
{
    addColumns();
    for (const char* signal : {"unmountVds", "deleteFile"})
        addPairs(CloudPage, signal, {"DELETE /api/v2/file/", "DELETE /api/v2/vds/"});
}

void FaultsCampaignTest::treeRemovalsGoOnSilently()
{
    QFETCH(QString, step);
    ShownVolume shown(*m_fixture, step, m_project->path());
    QCOMPARE(shown.page.model().vdsCount(), 1);
    const QStringList before = m_fixture->holdings();
    setFault();
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    shown.remove();

    const QString wrong = wrongEnding(boxes, bus, leftInFast(*m_fixture, before));
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    QCOMPARE(shown.page.removed.size(), int(shown.files.size()));
    QCOMPARE(shown.page.model().vdsCount(), 0);
}

void FaultsCampaignTest::searchCompletionShowsEveryResult_data()
{
    addColumns();
    // The page logs an unreadable listing as a trace, not as an error.
    addPairs(OsduPage, "search", {"GET /api/v2/vds/", "GET /api/v2/file/"}, {kListingBox});
}

void FaultsCampaignTest::searchCompletionShowsEveryResult()
{
    const auto client = m_fixture->client();
    client->mountFile(client->registerVds(kKnownDataset)->getMessage(), "cube", "", 0, 1, 0, 1, 0, 1);
    AnyPage session(*m_fixture, OsduPage, m_project->path());
    fast::OsduWidget& page = *session.osdu;
    Q_EMIT page.enableUI(); // as once signed in
    setFault();
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    // Without a session the search ends at once, with no hits, through the same completion that
    // then brings the hits of a real one.
    QTest::mouseClick(searchButton(page), Qt::LeftButton);
    page.onSearchDone(kResults);

    const QString wrong = wrongEnding(boxes, bus);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    QVERIFY(searchInput(page)->isEnabled() && searchButton(page)->isEnabled());
    QCOMPARE(resultNames(page), QStringList({"known", "new"}));
    QCOMPARE(resultLabel(page), "2 result(s) found");
    const std::string known = session.tree().vdsAt(0)->vdsId;
    QVERIFY(known.empty() || known == m_fixture->emulator().service().volumes().at(0).id);
}

void FaultsCampaignTest::connectionPollReportsTheAnswer_data()
{
    addColumns();
    addPairs(NoPage, "poll", {"GET /api/v2/about", "GET /api/v2/plugin/"}, {},
             {"Unable to get FAST status: HTTP request failed with status=%1",
              "Unable to parse JSON to get FAST version: %1"});
}

void FaultsCampaignTest::connectionPollReportsTheAnswer()
{
    setFault();
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;
    m_pollers.push_back(std::make_unique<PollingThread>(m_fixture->client()));
    const QStringList& results = m_pollers.back()->results;

    QTRY_COMPARE_WITH_TIMEOUT(results.size(), 1, 10000);
    QVERIFY2(QRegularExpression("^(true|false) (true|false) ").match(results.first()).hasMatch(),
             qPrintable(results.first().left(100)));
    const QString wrong = wrongEnding(boxes, bus);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

QTEST_MAIN(FaultsCampaignTest)
#include "tst_faults_campaign.moc"
