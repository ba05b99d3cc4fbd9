// Every action of the panel's pages while FAST misbehaves on the route the action uses. A row with
// an ending pins what the user is told and what is logged, word for word, and what follows (a
// retry, a restart, a project folder that takes no link); the campaign's rows, without one, pair
// every answer FAST should never send with every route of every action and accept any of the
// panel's own words. Every row ends with no wait cursor, no modal window and nothing in FAST that
// the panel does not know of.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "PollingThread.h"

#include <fast/fast.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>

#include <osdu/FileCollection.h>
#include <osdu/HttpResponse.h>

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>

#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QtTest>

#include <tuple>

using emulator::Delivery;
using emulator::Fault;

namespace {

// The local page differs from the cloud page only in how the user picks the volume.
enum PageKind { CloudPage, OsduPage };
const char* const kPageNames[] = {"cloud", "OSDU"};

const QString kUrl = QStringLiteral("https://store.example/survey/cube");
// A record whose registration FAST refused earlier, waiting for a retry: no other mount may take it.
const std::string kPendingUrl = "https://store.example/survey/pending";
const std::string kKnownDataset = "https://store.example/osdu/known";
const std::string kNewDataset = "https://store.example/osdu/new";
// Cut off in the middle of the second entry.
const std::string kGarbage = R"([{"id":"1","url":"/data/a.vds"},{"id":)";
const QString kUnreachableBox = QStringLiteral(
    "Bluware FAST™ not reachable: Bluware FAST™ could not be reached: nothing was unmounted.");
const QString kListingError = QStringLiteral("Unable to parse JSON to get VDS list: %1");
const QString kMountFailed = QStringLiteral("Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. Exception ");
// What a refused mount may log, on either page.
const QStringList kMountErrors = {"error: " + kMountFailed + "%3", "error: " + kMountErrorLine,
                                  "error: Bluware FAST™ error : impossible to rename remote file %1.kv"};

const std::string kHtml = "<html><head><title>502 Bad Gateway</title></head><body><h1>Bad Gateway</h1></body></html>";
const char* const kTenMegabytes = "10 MB";

// Answers FAST should never send, each with its name: shapes swapped, nulls, numbers for texts,
// keys missing, an empty or an HTML page, bytes that are not UTF-8, ten megabytes (sizes nobody
// checks, in one text: a quarter of a million objects would cost too much under a sanitizer), an
// answer broken off. Bodies without a status come from FAST itself, which has acted on the
// request; a status means something in front of FAST answered, which never saw it.
const std::vector<std::pair<const char*, Fault>> kHostileAnswers = {
    {"array for object", answering("[]")},
    {"object for array", answering(R"({"oops":1})")},
    {"null", answering("null")},
    {"numbers and objects for texts", answering(R"([{"id":1,"url":{},"vdsId":1,"path":{}}])")},
    {"number for the version", answering(R"({"version":7,"properties":7})")},
    {"nulls in entries", answering(R"([{"id":null,"url":null,"vdsId":null,"path":null}])")},
    {"null version", answering(R"({"version":null})")},
    {"entry without keys", answering("[{}]")},
    {"object without keys", answering("{}")},
    {"empty 200", Fault{200, 0, std::string()}},
    {"HTML page 200", Fault{200, 0, kHtml}},
    {"HTML page 502", Fault{502, 0, kHtml}},
    {"invalid UTF-8", answering("\xff\xfe\xc3\x28")},
    {"invalid UTF-8 in entries",
     answering("[{\"id\":\"\xc3\x28\",\"url\":\"\xff\",\"vdsId\":\"\xc3\x28\",\"path\":\"/\xe2\x28\xa1\"}]")},
    {kTenMegabytes, answering(R"([{"id":"x","url":")" + std::string(10 << 20, 'y') + R"(","vdsId":"x","path":"/p"}])")},
    {"cut short", broken(Delivery::TruncatedBody)},
    {"reset", broken(Delivery::ResetConnection)},
};

// Whether text is made from one of the patterns, each %1, %2... standing for any text that does
// not cross into the next of several texts joined with \x1f.
bool madeFrom(const QString& text, QStringList patterns)
{
    for (QString& pattern : patterns)
        pattern = QRegularExpression::escape(pattern).replace(QRegularExpression(R"(\\%\d)"), "[^\\x1f]*");
    const QString expression = QRegularExpression::anchoredPattern(patterns.join('|'));
    return !patterns.isEmpty()
           && QRegularExpression(expression, QRegularExpression::DotMatchesEverythingOption).match(text).hasMatch();
}

// POCO's own words on text read as a listing, which the panel passes on to the user.
QString complaintAbout(const std::string& text)
{
    try {
        Poco::JSON::Parser().parse(text).extract<Poco::JSON::Array::Ptr>();
    } catch (const Poco::Exception& failure) {
        return q(failure.message());
    }
    return {};
}

// said: "box: ", "error: ", "info: " and "trace: " lines, %u standing for FAST's address.
void addRow(const char* tag, PageKind page, const QString& action, const QString& route, const Fault& fault,
            const QStringList& said, const QString& ending)
{
    QTest::newRow(tag) << int(page) << action << route << fault << said << ending;
}

// Every hostile answer on each route of one action, with the boxes and errors it may end in;
// ten megabytes once per action.
void addPairs(PageKind page, const QString& action, std::initializer_list<const char*> routes,
              const QStringList& said = {})
{
    for (const char* route : routes) {
        for (const auto& [name, fault] : kHostileAnswers) {
            if (qstrcmp(name, kTenMegabytes) == 0 && route != *routes.begin())
                continue;
            const QString tag = QString("%1 %2 %3: %4").arg(kPageNames[page], action, route, name);
            QTest::newRow(qPrintable(tag)) << int(page) << action << route << fault << said << QString();
        }
    }
}

// What the user was told and what was logged, against the row, one line per fault. A row with an
// ending names every box, error and information word for word and in order, and the traces it
// needs (the status poll all of them: it keeps the log quiet unless it fails); the campaign's
// boxes and errors are each made from one of the row's patterns.
QString wrongWords(const MessageBoxAnswerer& boxes, const EventBusRecorder& bus, const QString& baseUrl, bool poll)
{
    QFETCH(QStringList, said);
    QFETCH(QString, ending);
    QStringList wrong;
    for (const auto& [kind, texts] :
         {std::pair(QString("box"), boxes.summaries()), std::pair(QString("error"), bus.texts(Error)),
          std::pair(QString("info"), bus.texts(Information)), std::pair(QString("trace"), bus.texts(Trace))}) {
        QStringList patterns = said.filter(QRegularExpression("^" + kind + ": "));
        patterns.replaceInStrings(QRegularExpression("^" + kind + ": "), "").replaceInStrings("%u", baseUrl);
        if (ending.isEmpty() && kind != "info" && kind != "trace") {
            for (const QString& text : texts) {
                if (!madeFrom(text, patterns))
                    wrong << kind + ": " + text.left(300);
            }
        } else if (!ending.isEmpty() && kind == "trace" && !poll) {
            for (const QString& pattern : patterns) {
                if (std::none_of(texts.begin(), texts.end(), [&](const QString& t) { return madeFrom(t, {pattern}); }))
                    wrong << "trace missing: " + pattern;
            }
        } else if (!ending.isEmpty() && !madeFrom(texts.join('\x1f'), {patterns.join('\x1f')})) {
            wrong << kind + ": " + texts.join(" | ").left(600);
        }
    }
    return wrong.join('\n');
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
    AnyPage(FastEmulatorFixture& fixture, int kind, const QString& projectDir) : projectDir(projectDir)
    {
        if (kind == CloudPage)
            page = std::make_unique<fast::VdsWidget>(fast::VdsWidget::CLOUD_URL, fixture.client(), projectDir);
        else
            page = std::make_unique<fast::OsduWidget>(fixture.client(), projectDir);
        page->setConnectedToFast(true);
        page->show();
        if (osdu())
            osdu()->onSearchDone(kResults);
    }

    fast::VdsWidget* vds() const { return qobject_cast<fast::VdsWidget*>(page.get()); }
    fast::OsduWidget* osdu() const { return qobject_cast<fast::OsduWidget*>(page.get()); }
    fast::FastTreeModel& tree() const { return *page->treeView()->model(); }
    std::optional<fast::VdsModel> record(const std::string& url) const
    {
        for (const fast::VdsModel& record : tree().vdsList()) {
            if (record.url == url)
                return record;
        }
        return std::nullopt;
    }

    void startMount()
    {
        if (vds()) {
            pathField(*vds())->setText(kUrl);
            QTest::mouseClick(actionButton(*vds()), Qt::LeftButton);
        } else if (const auto found = record(kNewDataset)) {
            osdu()->onMountVds(projectDir, *found);
        }
    }

    QString projectDir;
    std::unique_ptr<fast::FastWidget> page;
};

} // namespace

class FaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_fixture = std::make_unique<FastEmulatorFixture>(); }
    void init();
    void cleanup();
    void cleanupTestCase();

    void faults_data();
    void faults();

private:
    // One emulator for all rows: stopping one takes a quarter of a second.
    std::unique_ptr<FastEmulatorFixture> m_fixture;
    // A fresh folder per row: links FAST writes late must not meet the next row's mount.
    std::unique_ptr<QTemporaryDir> m_project;
    // A poller ends only after its five-second sleep: they all end together, at the end.
    std::vector<std::unique_ptr<PollingThread>> m_pollers;
};

void FaultsTest::init()
{
    emulator::FastEmulator& emulator = m_fixture->emulator();
    if (!emulator.isRunning())
        emulator.start();
    emulator.clearFaults();
    for (const auto& file : emulator.service().files())
        emulator.service().handle("DELETE", "/api/v2/file/" + file.id, {});
    for (const auto& volume : emulator.service().volumes())
        emulator.service().handle("DELETE", "/api/v2/vds/" + volume.id, {});
    emulator.clearRequests();
    m_project = std::make_unique<QTemporaryDir>();
}

void FaultsTest::cleanup()
{
    // A row that left the wait cursor has failed already; the next ones must not fail for it.
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
    for (const auto& poller : m_pollers)
        poller->thread()->requestInterruption();
}

void FaultsTest::cleanupTestCase()
{
    m_pollers.clear();
}

void FaultsTest::faults_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("route");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QStringList>("said");
    // Empty for the campaign's rows; for the status poll, what it reports.
    QTest::addColumn<QString>("ending");

    // First, so that the pollers' sleeps pass during the other rows.
    const QString status = "error: Unable to get FAST status: HTTP request failed with status=500";
    const QString response = "trace: Response from FAST REST API: code=500, body=" + kInjectedBody;
    addRow("poll: version 500", CloudPage, "poll", "GET /api/v2/about", failing(500),
           {status, "trace: Call FAST REST API 43: method=GET, url=%u/api/v2/about", response}, "false true ");
    addRow("poll: plug-in 500", CloudPage, "poll", "GET /api/v2/plugin/Korvane", failing(500),
           {"trace: Call FAST REST API 89: method=GET, url=%u/api/v2/plugin/Korvane", response}, "true false 2.0.0");
    // No time-out guards a FAST request: a late answer is still a good one.
    addRow("poll: version 2 s late", CloudPage, "poll", "GET /api/v2/about", Fault{std::nullopt, 2000, std::nullopt},
           {}, "true true 2.0.0");
    addPairs(CloudPage, "poll", {"GET /api/v2/about", "GET /api/v2/plugin/"},
             {"error: Unable to get FAST status: HTTP request failed with status=%1",
              "error: Unable to parse JSON to get FAST version: %1"});

    // The listing: a broken one empties the page and says why; one lost on the wire reads as empty.
    for (const auto& [tag, route, fault, body, site] :
         {std::tuple("list: volumes 500", "GET /api/v2/vds/", failing(500), kInjectedBody.toStdString(),
                     "exception 372"),
          std::tuple("list: files not JSON", "GET /api/v2/file/", answering(kGarbage), kGarbage,
                     "JSONException 365")}) {
        const QString error = kListingError.arg(complaintAbout(body));
        addRow(tag, CloudPage, "list", route, fault,
               {"box: Unable to list VDS: " + error, "error: " + error, QString("trace: FAST VDS init ") + site},
               "empty");
    }
    addRow("list: files reset", CloudPage, "list", "GET /api/v2/file/", broken(Delivery::ResetConnection),
           {"trace: Response from FAST REST API: code=0, body="}, "empty");
    addPairs(CloudPage, "list", {"GET /api/v2/file/", "GET /api/v2/vds/"},
             {"box: Unable to list VDS: " + kListingError, "error: " + kListingError});

    // A registration FAST refused keeps the record without an id, and the next click retries.
    const QString refusal = "info: Unable to register VDS (url=" + kUrl + ") in Bluware FAST™";
    for (const auto& [tag, fault, note] :
         {std::tuple("mount: registration 200 without id", Fault{200, 0, std::string()}, refusal + " with empty id!"),
          std::tuple("mount: registration 405", failing(405), refusal + ": invalid parameters."),
          std::tuple("mount: registration 409", failing(409),
                     "info: VDS (url=" + kUrl + ") already registered in Bluware FAST™."),
          // Reset before FAST saw the request: the next click registers anew.
          std::tuple("mount: registration reset", broken(Delivery::ResetConnection),
                     refusal + ". Unexpected error code: 0.")})
        addRow(tag, CloudPage, "mount", "POST /api/v2/vds/", fault, {"box: " + kRegistrationBox, note}, "retry");
    const QString registered = "info: Successfully registered VDS (url=" + kUrl + ") in Bluware FAST™ with id=%9.";
    // An answer that names no id, after FAST registered: the id is read from FAST's listing.
    addRow("mount: registration cut short", CloudPage, "mount", "POST /api/v2/vds/", broken(Delivery::TruncatedBody),
           {registered}, "dialog");
    addRow("mount: registration answered with a page", CloudPage, "mount", "POST /api/v2/vds/",
           answering("<html>OK</html>"), {registered}, "dialog");
    // Failures before the dialog unregister only a volume that has an id, and say why.
    const QString failed = "error: " + QString(kMountFailed).arg(kUrl) + "occurred: ";
    const QString badJson = "error: " + QString(kMountFailed).arg(kUrl)
                            + "occurred while parsing JSON to get volume data from VDS: ";
    const QString other = "trace: FAST VDS onMountVds exception 277";
    const QString syntax = "trace: FAST VDS onMountVds JSONException 261";
    const QString notANumber = [] {
        try {
            return QString::number(std::stoi("deep"));
        } catch (const std::invalid_argument& failure) {
            return QString(failure.what());
        }
    }();
    for (const auto& [tag, route, fault, lines] :
         {std::tuple("mount: lookup file listing 500", "GET /api/v2/file/", failing(500),
                     QStringList{other, QString(failed).arg("") + complaintAbout(kInjectedBody.toStdString())}),
          std::tuple("mount: lookup volume listing not JSON", "GET /api/v2/vds/", answering(kGarbage),
                     QStringList{syntax, QString(badJson).arg("") + complaintAbout(kGarbage)}),
          std::tuple("mount: description not JSON", "GET /api/v2/plugin/", answering(kGarbage),
                     QStringList{registered, syntax, badJson + complaintAbout(kGarbage)}),
          std::tuple("mount: description bound not a number", "GET /api/v2/plugin/",
                     answering(R"({"properties":{"subvolume":{"properties":{"dim0":{"properties":{"min":)"
                               R"({"default":"deep"}}}}}}})"),
                     QStringList{registered, other, failed + notANumber}),
          std::tuple("mount: description 500", "GET /api/v2/plugin/", failing(500),
                     QStringList{registered, other,
                                 failed + "HTTP request failed with status=500, message=" + kInjectedBody})})
        addRow(tag, CloudPage, "mount", route, fault, QStringList("box: " + kMountFailedBox) + lines, "refused");
    const QStringList refused = QStringList{"box: " + kRegistrationBox, "box: " + kMountFailedBox} + kMountErrors;
    addPairs(CloudPage, "mount", {"GET /api/v2/file/", "GET /api/v2/vds/", "POST /api/v2/vds/", "GET /api/v2/plugin/"},
             refused);
    // The OSDU page takes FAST's ids from the search and looks nothing up before registering.
    addPairs(OsduPage, "mount", {"POST /api/v2/vds/", "GET /api/v2/plugin/"}, refused);

    // Save: a refused mount takes the registration along; one that names no file id is read back.
    // Killed while it holds the request: the page lets go; back, FAST still has the volume.
    Fault killed{std::nullopt, 200, std::nullopt};
    killed.stopsService = true;
    for (const auto& [tag, fault, status, body, ending] :
         {std::tuple("Save: mount 500", failing(500), "500", kInjectedBody, "undone"),
          std::tuple("Save: service killed", killed, "0", QString(), "restart")})
        addRow(tag, CloudPage, "Save", "POST /api/v2/file/", fault,
               {"box: " + kMountErrorBox.arg(status, body), "error: " + kMountErrorLine.arg(status, body)}, ending);
    addRow("Save: mount cut short", CloudPage, "Save", "POST /api/v2/file/", broken(Delivery::TruncatedBody), {},
           "added");
    addRow("Save: mount answered null", CloudPage, "Save", "POST /api/v2/file/", answering("null"), {}, "added");
    // A file where the project folder should be stops everybody, root and FAST's link included;
    // the rename gives up at once, with no folder for the link to appear in.
    addRow("Save: project folder takes no link", CloudPage, "Save", QString(), Fault{},
           {"box: " + kMountErrorBox.arg("200", "%9"),
            "error: Bluware FAST™ error : impossible to rename remote file cube.kv"},
           "blocked");
    for (PageKind page : {CloudPage, OsduPage}) {
        addPairs(page, "Save", {"POST /api/v2/file/"}, QStringList("box: " + kMountErrorBox) + kMountErrors);
        // Like the tree's own handlers, a cancel that FAST refuses goes unreported.
        addPairs(page, "Cancel", {"DELETE /api/v2/vds/"});
    }

    // The tree's removals go on silently past every refusal; FAST keeps what it refused to drop.
    // Without any answer, the tree and the project keep the file too, and the user hears why.
    for (const char* action : {"unmountVds", "deleteFile"}) {
        addRow(qPrintable(QString(action) + ": 500"), CloudPage, action, "DELETE /api/v2/", failing(500), {}, "kept");
        addRow(qPrintable(QString(action) + ": FAST stopped"), CloudPage, action, "DELETE /api/v2/", killed,
               {"box: " + kUnreachableBox}, "unreachable");
        addPairs(CloudPage, action, {"DELETE /api/v2/file/", "DELETE /api/v2/vds/"}, {"box: " + kUnreachableBox});
    }

    // The page logs an unreadable listing as a trace, not as an error.
    addPairs(OsduPage, "search", {"GET /api/v2/vds/", "GET /api/v2/file/"},
             {"box: Unable to list VDS: " + kListingError});
}

void FaultsTest::faults()
{
    QFETCH(int, page);
    QFETCH(QString, action);
    QFETCH(QString, route);
    QFETCH(Fault, fault);
    QFETCH(QString, ending);
    emulator::FastEmulator& emulator = m_fixture->emulator();
    const bool tree = action == "unmountVds" || action == "deleteFile";
    const bool mounting = action == "mount" || action == "Save" || action == "Cancel";
    const QString project = m_project->path() + (ending == "blocked" ? "/locked" : "");
    QFile blocker(project);
    QVERIFY(ending != "blocked" || blocker.open(QIODevice::WriteOnly));

    // What FAST holds before the action: a volume for the listing, the search and the tree (with
    // two files when the volume goes, one when its only file does).
    const auto client = m_fixture->client();
    std::string vdsId;
    std::vector<fast::VdsFile> files;
    if (action == "list" || action == "search" || tree) {
        vdsId = client->registerVds(page == OsduPage ? kKnownDataset : kUrl.toStdString())->getMessage();
        for (const char* name : {"one", "two"}) {
            if (files.empty() || action == "unmountVds")
                files.push_back({client->mountFile(vdsId, name, "", 0, 1, 0, 1, 0, 1)->getMessage(), name});
        }
    }
    const QStringList empty = m_fixture->holdings();
    AnyPage session(*m_fixture, page, project);
    fast::FastWidget* widget = session.page.get();
    if (page == CloudPage && mounting)
        session.tree().addVds(fast::VdsModel({}, "pending", {}, {}, {}, kPendingUrl, {}));
    if (tree)
        session.vds()->init({project + "/one"});
    if (action == "search")
        Q_EMIT session.osdu()->enableUI(); // as once signed in
    if (action == "Save" || action == "Cancel") {
        session.startMount();
        QTRY_VERIFY(openMountDialog(widget));
    }
    const QStringList before = m_fixture->holdings();
    QSignalSpy added(widget, &fast::FastWidget::addToExtraDataManager);
    QSignalSpy removed(widget, &fast::FastWidget::removeVdsFileFromProject);
    emulator.clearRequests();
    if (!route.isEmpty())
        emulator.setFault(route.section(' ', 0, 0).toStdString(), route.section(' ', 1).toStdString(), fault);
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;

    if (action == "poll") {
        m_pollers.push_back(std::make_unique<PollingThread>(client));
        const QStringList& results = m_pollers.back()->results;
        QTRY_COMPARE_WITH_TIMEOUT(results.size(), 1, fault.delayMs + 10000);
        m_pollers.back()->thread()->requestInterruption();
        QVERIFY2(ending.isEmpty() ? results.first().contains(QRegularExpression("^(true|false) (true|false) "))
                                  : results.first() == ending,
                 qPrintable(results.first().left(100)));
    } else if (action == "list") {
        session.vds()->init({project + "/one"});
    } else if (action == "search") {
        // Without a session the search ends at once, with no hits, through the same completion
        // that then brings the hits of a real one.
        QTest::mouseClick(searchButton(*session.osdu()), Qt::LeftButton);
        session.osdu()->onSearchDone(kResults);
    } else if (action == "unmountVds") { // as the tree's context menu asks
        Q_EMIT widget->treeView()->unmountVds(vdsId, files);
    } else if (action == "deleteFile") {
        Q_EMIT widget->treeView()->deleteFile(vdsId, files.front());
    } else if (action == "mount") {
        session.startMount();
    } else {
        answerMountDialog(widget, "cube", action);
        if (ending == "blocked") {
            // Closing meanwhile would tell the page that nothing was mounted while FAST holds the file.
            fast::MountNewVolume* dialog = openMountDialog(widget);
            QVERIFY(dialog);
            dialog->reject();
            QVERIFY(dialog->isVisible() && !saveButton(*dialog)->isEnabled());
            QCOMPARE(saveButton(*dialog)->text(), "Save");
        }
    }
    if (mounting) {
        // A link that never comes is waited for ten seconds.
        QTRY_VERIFY_WITH_TIMEOUT(bool(openMountDialog(widget)) == (action == "mount") || !boxes.summaries().isEmpty(),
                                 15000);
    }
    const QString wrongWords = ::wrongWords(boxes, bus, q(m_fixture->baseUrl()), action == "poll");
    QVERIFY2(wrongWords.isEmpty(), qPrintable(wrongWords));

    const bool dialogOpened = mounting && openMountDialog(widget);
    if (mounting && ending.isEmpty()) {
        const bool reached = action == "mount" ? dialogOpened : action == "Save" ? added.size() == 1 : true;
        QVERIFY2(reached || !boxes.summaries().isEmpty(), "the action ended without its result or a word");
    }
    const std::optional<fast::VdsModel> record = session.record(kUrl.toStdString());
    if (ending == "retry") {
        // The record stays without an id, so that the next click tries again.
        QVERIFY(!dialogOpened && record && record->vdsId.empty());
    } else if (ending == "dialog") {
        // The page holds the id FAST gave, not what came back in its place.
        QVERIFY(dialogOpened && record);
        QCOMPARE(emulator.service().volumes().size(), std::size_t(1));
        QCOMPARE(q(record->vdsId), q(emulator.service().volumes().at(0).id));
    } else if (ending == "added") {
        QCOMPARE(added.size(), 1);
    } else if (ending == "refused" || ending == "undone" || ending == "blocked" || ending == "restart") {
        QVERIFY(!dialogOpened && !record);
        QCOMPARE(added.size(), 0);
    } else if (ending == "empty") {
        QCOMPARE(session.tree().vdsCount(), 0);
    } else if (ending == "kept") {
        QStringList deletes;
        for (const fast::VdsFile& file : files)
            deletes << q("DELETE /api/v2/file/" + file.fileId);
        QCOMPARE(m_fixture->requestLines(), deletes << q("DELETE /api/v2/vds/" + vdsId));
        QCOMPARE(m_fixture->holdings(), before);
    }
    if (ending == "retry" || ending == "restart") {
        // The next click registers the volume, or finds it where a killed FAST, back on the same
        // port, still holds it.
        QCOMPARE(emulator.isRunning(), ending == "retry");
        emulator.clearFaults();
        if (ending == "restart")
            emulator.start();
        QVERIFY(emulator.service().files().empty());
        bus.clear();
        session.startMount();
        QTRY_VERIFY(openMountDialog(widget));
        QCOMPARE(emulator.service().volumes().size(), std::size_t(1));
        const QString id = q(emulator.service().volumes().at(0).id);
        QCOMPARE(bus.texts(Information),
                 QStringList(ending == "retry"
                                 ? "Successfully registered VDS (url=" + kUrl + ") in Bluware FAST™ with id=" + id + "."
                                 : "Successfully found a VDS (url=" + kUrl
                                       + ") already registered in Bluware FAST™ with id=" + id + "."));
        QCOMPARE(boxes.boxes().size(), 1);
    }
    if (action == "list" && ending.isEmpty()) {
        // The volume under FAST's id, or nothing when the listing could not be read.
        QVERIFY(session.tree().vdsCount() <= 1);
        QVERIFY(!record || record->vdsId == vdsId);
    } else if (tree) {
        QCOMPARE(removed.size(), boxes.summaries().isEmpty() ? int(files.size()) : 0);
        QCOMPARE(session.tree().vdsCount(), boxes.summaries().isEmpty() ? 0 : 1);
    } else if (action == "search") {
        const fast::OsduWidget& osdu = *session.osdu();
        QVERIFY(searchInput(osdu)->isEnabled() && searchButton(osdu)->isEnabled());
        QCOMPARE(resultNames(osdu), QStringList({"known", "new"}));
        QCOMPARE(resultLabel(osdu), "2 result(s) found");
        const std::string known = session.tree().vdsAt(0)->vdsId;
        QVERIFY(known.empty() || known == vdsId);
    }

    // A mount that got as far as the dialog is cancelled, which must take its registration along.
    if (mounting) {
        answerMountDialog(widget, "", "Cancel");
        QTRY_VERIFY(!openMountDialog(widget));
        if (page == CloudPage)
            QVERIFY(session.record(kPendingUrl));
    }
    // What FAST holds beyond what it held before that the tree has no id for, and any request on
    // a bare collection: what the panel can no longer undo, or must never ask. A refused cancel or
    // removal may leave what FAST held, but nothing more; a saved file stays, in the tree.
    QStringList known;
    for (const fast::VdsModel& record : action == "Save" ? session.tree().vdsList() : QList<fast::VdsModel>()) {
        known << q(record.vdsId);
        for (const fast::VdsFile& file : record.files)
            known << q(file.fileId);
    }
    QStringList wrong;
    for (const QString& line : m_fixture->holdings()) {
        if (!(action == "mount" || action == "Save" ? empty : before).contains(line)
            && !known.contains(line.section(' ', 0, 0)))
            wrong << "left in FAST: " + line;
    }
    for (const QString& request : m_fixture->requestLines().filter(QRegularExpression("^DELETE /api/v2/(vds|file)/$")))
        wrong << "asked for " + request;
    if (QApplication::overrideCursor())
        wrong << "override cursor left";
    if (const QWidget* modal = QApplication::activeModalWidget())
        wrong << "still open: " + modal->windowTitle();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

QTEST_MAIN(FaultsTest)
#include "tst_faults.moc"
