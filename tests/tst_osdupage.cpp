// The OSDU page end to end: sign-in through a browser played by the test, the refresh token
// kept for the next run, the search with its filter, and the datasets as FAST knows them.
// One initializer per process: initTestCase signs in with it, and every case builds on that.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "OsduEmulatorSettings.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "SignInWatch.h"
#include "TestBrowser.h"

#include <fast/client/Fast.h>
#include <fast/client/VirtualDrive.h>
#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/BackgroundWork.h>
#include <fast/panel/OsduWidget.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>

#include <osdu/HttpResponse.h>
#include <osdu/OsduAuthProvider.h>

#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QSettings>
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif
#include <QtTest>

using fast::OsduFastInitializer;

namespace {

constexpr int kDatasets = 5;

std::string seededUrl(int number)
{
    return fast::modifyVdsFilepath(
        QString("s3://fast-demo-bucket/volumes/vol-%1/").arg(number, 4, 10, QChar('0')).toStdString());
}

} // namespace

class OsduPageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aLaterRunSignsInFromTheStoredTokenOnlyWhenItStillFits();
    void searchFiltersByNameDescriptionAndId();
    void platformTextsAreReadAsUtf8OnAnyMachine();
    void fetchesAtOnceTellWhatOneAtATimeTells();
    void closingThePageDuringASearchDropsItsResults();
    void aSearchShowsItsProgressAndStopsOnCancelOrEscape_data();
    void aSearchShowsItsProgressAndStopsOnCancelOrEscape();
    void anUnmountedDatasetShowsAsUnregisteredAgain_data();
    void anUnmountedDatasetShowsAsUnregisteredAgain();
    void theDatasetsComeBackWithFastAsFastNowKnowsThem();
    // Last: it leaves a thousand datasets behind, which every later search would fetch.
    void onlyTheFirstThousandHitsAreExamined();

private:
    void searchFor(const QString& filter);
    // Registers the seeded dataset with FAST and mounts one file of it as name.
    void mountSeeded(int number, const char* name);

    std::unique_ptr<FastEmulatorFixture> m_fast;
    std::unique_ptr<emulator::OsduEmulator> m_osdu;
    std::unique_ptr<fast::OsduWidget> m_page;
};

void OsduPageTest::initTestCase()
{
    m_fast = std::make_unique<FastEmulatorFixture>();
    m_osdu = startOsduEmulator(m_fast->settings(), {}, kDatasets, "http://localhost");
    m_page = std::make_unique<fast::OsduWidget>(m_fast->client(), m_fast->projectDir());
    m_page->setConnectedToFast(true); // as the panel does once FAST answers: the icon columns show
    m_page->show();
    // Made before Connect, so that the page takes this instance and its browser.
    OsduFastInitializer::instance(OsduFastInitializer::AWS)->authProvider()->setBrowserOpener(testBrowser());
    EventBusRecorder bus;
    QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(searchInput(*m_page)->isEnabled(), kSignInLimitMs);
    QVERIFY(!bus.texts(Information).filter("OSDU Authentication: ").isEmpty());
}

void OsduPageTest::searchFor(const QString& filter)
{
    searchInput(*m_page)->setText(filter);
    QVERIFY(search(*m_page));
}

void OsduPageTest::mountSeeded(int number, const char* name)
{
    const auto client = m_fast->client();
    client->mountFile(client->registerVds(seededUrl(number))->getMessage(), name, m_fast->projectDir().toStdString(), 0,
                      1, 0, 1, 0, 1);
}

void OsduPageTest::aLaterRunSignsInFromTheStoredTokenOnlyWhenItStillFits()
{
    const auto signInChoosesBrowser = []() -> bool {
        OsduFastInitializer later(OsduFastInitializer::AWS);
        bool opened = false;
        later.authProvider()->setBrowserOpener(forbiddenBrowser(&opened));
        QSignalSpy authorized(later.authProvider().get(), &osdu::OsduAuthProvider::userAuthorized);
        QSignalSpy failed(later.authProvider().get(), &osdu::OsduAuthProvider::error);
        later.authProvider()->authorizeAsync(kSignInLimitMs);
        return QTest::qWaitFor([&] { return authorized.size() + failed.size() > 0 || opened; }, 2 * kSignInLimitMs)
               && opened;
    };
    const int grants = m_osdu->issuedTokens().refreshGrants;
    QVERIFY(!signInChoosesBrowser());
    QCOMPARE(m_osdu->issuedTokens().refreshGrants, grants + 1);
    // A token that expires now, one stored for another secret or other credentials: not used.
    const std::vector<std::pair<const char*, QVariant>> foreign{{"AWS/OSDU_REFRESH_TOKEN_EXPIRY",
                                                                 QDateTime::currentDateTime()},
                                                                {"AWS/OSDU_CLIENT_SECRET", "changed"},
                                                                {"AWS/OSDU_REFRESH_TOKEN_HASH", "c29tZW9uZSBlbHNl"}};
    for (const auto& [key, value] : foreign) {
        QSettings settings;
        const QVariant kept = settings.value(key);
        settings.setValue(key, value);
        QVERIFY2(signInChoosesBrowser(), key);
        settings.setValue(key, kept);
    }
}

void OsduPageTest::searchFiltersByNameDescriptionAndId()
{
    // The second dataset is known to FAST already.
    const std::string vdsId = m_fast->client()->registerVds(seededUrl(2))->getMessage();
    searchFor("");
    QCOMPARE(resultNames(*m_page),
             QStringList({"Volume 0001", "Volume 0002", "Volume 0003", "Volume 0004", "Volume 0005"}));
    QCOMPARE(q(m_page->treeView()->model()->vdsAt(1)->vdsId), q(vdsId));
    QVERIFY(m_page->treeView()->model()->vdsAt(0)->vdsId.empty());

    searchFor("SEISMIC VOLUME 4,");
    QCOMPARE(resultNames(*m_page), QStringList{"Volume 0004"});
    searchFor("vol-0005"); // in the id alone
    QCOMPARE(resultNames(*m_page), QStringList{"Volume 0005"});
    searchFor("no such volume");
    QCOMPARE(resultLabel(*m_page), "No result");

    // Return runs the same search, busy and closed to a second Return until the results are in.
    fast::SearchInput* box = searchInput(*m_page);
    box->setText("volume 0003");
    QTest::keyClick(box, Qt::Key_Return);
    QVERIFY(!box->isEnabled() && searchButton(*m_page)->text() == "Cancel");
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
    QTRY_VERIFY_WITH_TIMEOUT(box->isEnabled(), 30000);
    QCOMPARE(resultNames(*m_page), QStringList{"Volume 0003"});
    QCOMPARE(resultLabel(*m_page), "1 result(s) found");
    QVERIFY(!QApplication::overrideCursor());
}

void OsduPageTest::platformTextsAreReadAsUtf8OnAnyMachine()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // A Windows machine's 8-bit encoding is not UTF-8. (Qt 6 reads the machine's own encoding and
    // lets no program change it, so there the test reads as this machine does.)
    QTextCodec* local = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("Windows-1252"));
#endif
    m_osdu->addDataset("opendes:dataset--FileCollection.Bluware.OpenVDS:utf8", "Nordsjø Ålesund 北海", "Tiefe für Öl",
                       "s3://fast-demo-bucket/volumes/utf8/");
    searchFor("Ålesund");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QTextCodec::setCodecForLocale(local);
#endif
    QCOMPARE(resultNames(*m_page), QStringList{"Nordsjø Ålesund 北海"});
}

void OsduPageTest::fetchesAtOnceTellWhatOneAtATimeTells()
{
    m_osdu->failRecordFetch(m_osdu->seededDatasetId(2));
    m_osdu->failRecordFetch(m_osdu->seededDatasetId(4));
    const auto searchWith = [this](const char* concurrency) {
        m_fast->settings().set("AWS", "OSDU_FETCH_CONCURRENCY", concurrency);
        EventBusRecorder bus;
        searchFor("");
        return std::make_pair(resultNames(*m_page),
                              bus.texts(Trace).filter(QRegularExpression("^(About|Unable|FAST)")));
    };
    const auto oneAtATime = searchWith("1");
    const auto atOnce = searchWith("16");
    m_fast->settings().remove("AWS", "OSDU_FETCH_CONCURRENCY");
    m_osdu->clearFaults();
    QCOMPARE(atOnce.first, oneAtATime.first);
    QCOMPARE(atOnce.second, oneAtATime.second);
    QCOMPARE(atOnce.second.filter("Unable to query the record").size(), 2);
}

void OsduPageTest::closingThePageDuringASearchDropsItsResults()
{
    auto* page = new fast::OsduWidget(m_fast->client(), m_fast->projectDir());
    page->userAuthorized();                       // signed in already: the process-wide session serves this page too
    QVERIFY(!providerChoice(*page)->isEnabled()); // that session's provider, no other
    // Every fetch is held for a minute: the search is deleted with its fetches in flight.
    m_osdu->setDelay("/api/storage/v2/records/", 60000);
    QTest::mouseClick(searchButton(*page), Qt::LeftButton);
    QTRY_VERIFY(resultLabel(*page).startsWith("Reading datasets: 0 of"));
    delete page;
    QVERIFY(!QApplication::overrideCursor());
    // The fetches are abandoned, not waited for; the results must not reach the deleted page.
    QVERIFY(fast::waitForBackgroundWork(10000));
    m_osdu->clearFaults();
}

void OsduPageTest::aSearchShowsItsProgressAndStopsOnCancelOrEscape_data()
{
    QTest::addColumn<bool>("escape");
    QTest::newRow("Cancel button") << false;
    QTest::newRow("Escape") << true;
}

void OsduPageTest::aSearchShowsItsProgressAndStopsOnCancelOrEscape()
{
    QFETCH(bool, escape);
    // One fetch at a time, and the third volume's is not answered for a minute: the search waits
    // there, after the hits before it (the records come in id order, the volumes last).
    m_fast->settings().set("AWS", "OSDU_FETCH_CONCURRENCY", "1");
    const QByteArray third = QUrl::toPercentEncoding(q(m_osdu->seededDatasetId(3)));
    m_osdu->setDelay("/api/storage/v2/records/" + third.toStdString(), 60000);
    const QString read = QString("%1 of %2").arg(m_osdu->recordCount() - 3).arg(m_osdu->recordCount());
    QPushButton* button = searchButton(*m_page);
    searchInput(*m_page)->setText("volume 000");
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_COMPARE(resultLabel(*m_page), "Reading datasets: " + read);
    QVERIFY(button->isEnabled() && button->text() == "Cancel");
    if (escape)
        QTest::keyClick(button, Qt::Key_Escape); // the button has no use for it; the page has
    else
        QTest::mouseClick(button, Qt::LeftButton);
    // The fetch in flight is abandoned, not waited for.
    QTRY_COMPARE_WITH_TIMEOUT(button->text(), "Search", 2000);
    m_osdu->clearFaults();
    m_fast->settings().remove("AWS", "OSDU_FETCH_CONCURRENCY");
    QCOMPARE(resultNames(*m_page), QStringList({"Volume 0001", "Volume 0002"}));
    QCOMPARE(resultLabel(*m_page), "2 result(s) found (search cancelled after " + read + " datasets)");
    QVERIFY(searchInput(*m_page)->isEnabled() && !QApplication::overrideCursor());
}

void OsduPageTest::onlyTheFirstThousandHitsAreExamined()
{
    m_osdu->seedDatasets(1200 - int(m_osdu->recordCount()));
    searchFor("");
    QCOMPARE(resultLabel(*m_page), "1000 result(s) found (the first 1000 of 1200 datasets were searched)");
}

void OsduPageTest::anUnmountedDatasetShowsAsUnregisteredAgain_data()
{
    QTest::addColumn<bool>("lastFile");
    QTest::newRow("unmount icon") << false;
    QTest::newRow("delete icon of its last file") << true;
}

void OsduPageTest::anUnmountedDatasetShowsAsUnregisteredAgain()
{
    QFETCH(bool, lastFile);
    mountSeeded(5, "south");
    searchFor("volume 0005");
    auto* view = m_page->treeView();
    QCOMPARE(view->model()->vdsAt(0)->files.size(), std::size_t(1));
    QSignalSpy removed(m_page.get(), &fast::OsduWidget::removeVdsFileFromProject);
    if (lastFile) { // a file row of this tree shows no delete icon; the request comes as the tree sends it
        Q_EMIT view->deleteFile(view->model()->vdsAt(0)->vdsId, view->model()->vdsAt(0)->files.front());
    } else {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                          view->visualRect(view->QTreeView::model()->index(0, 3)).center());
    }
    QTRY_COMPARE(removed.size(), 1);
    QCOMPARE(removed.first().at(0).toString(), "south");
    const auto volumes = m_fast->emulator().service().volumes();
    QVERIFY(
        std::none_of(volumes.begin(), volumes.end(), [](const auto& volume) { return volume.url == seededUrl(5); }));
    QVERIFY(view->model()->vdsAt(0)->vdsId.empty());
    QVERIFY(view->model()->vdsAt(0)->files.empty());
    // Rebuilt: the "Files" row is empty.
    const QAbstractItemModel* rows = view->QTreeView::model();
    QCOMPARE(rows->rowCount(rows->index(0, 0, rows->index(0, 0))), 0);
}

void OsduPageTest::theDatasetsComeBackWithFastAsFastNowKnowsThem()
{
    searchFor("volume 000");
    const int datasets = m_page->treeView()->model()->vdsCount();
    const QAbstractItemModel* rows = m_page->treeView()->QTreeView::model();
    m_page->setConnectedToFast(false);
    QCOMPARE(rows->rowCount(), 0);
    mountSeeded(3, "west"); // while FAST was away
    m_page->setConnectedToFast(true);

    QCOMPARE(rows->rowCount(), datasets);
    const fast::VdsModel third = *m_page->treeView()->model()->vdsAt(2);
    QCOMPARE(q(third.url), q(seededUrl(3)));
    QCOMPARE(third.files.size(), std::size_t(1));
    QCOMPARE(q(third.files.front().fileName), "west");
}

QTEST_MAIN(OsduPageTest)
#include "tst_osdupage.moc"
