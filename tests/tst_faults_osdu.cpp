// The OSDU page when the platform or its authorization server lets it down, one row per
// (session, action, fault): the token endpoint closed, failing or silent, a stored session the
// server has let lapse, a certificate nobody trusts, an access token revoked in the middle of a
// search. Each ends in the library's own words, with Connect or Search ready again and nothing
// left listening. The process has one initializer; each row sets its provider's session itself,
// so that a row passes alone and in any order.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "OsduEmulatorSettings.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "SignInWatch.h"
#include "TestBrowser.h"
#include "UntrustedTlsServer.h"

#include <Http2Front.h>

#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/OsduWidget.h>

#include <osdu/OsduAuthProvider.h>

#include <QApplication>
#include <QClipboard>
#include <QPushButton>
#include <QSettings>
#include <QtTest>

using emulator::OsduEmulator;
using fast::OsduFastInitializer;

namespace {

constexpr int kDatasets = 6;
constexpr int kFetched = 3;
const QString kSignInBox = "Failed to connect to OSDU environment: ";
const QStringList kStoredSession = {"AWS/OSDU_REFRESH_TOKEN", "AWS/OSDU_REFRESH_TOKEN_HASH",
                                    "AWS/OSDU_REFRESH_TOKEN_EXPIRY"};

QString storedToken()
{
    return QSettings().value(kStoredSession.first()).toString();
}

} // namespace

class FaultsOsduTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void faults_data();
    void faults();

private:
    emulator::OsduEmulatorOptions m_options;
    std::unique_ptr<FastEmulatorFixture> m_fast;
    std::unique_ptr<OsduEmulator> m_osdu;
    std::shared_ptr<osdu::OsduAuthProvider> m_provider;
    std::unique_ptr<fast::OsduWidget> m_page;
    SignInWatch m_browser;
    QString m_lapsedToken;
    QList<QVariant> m_storedSession;
};

void FaultsOsduTest::initTestCase()
{
    m_fast = std::make_unique<FastEmulatorFixture>();
    m_options.announceRefreshTokenLifetime = false;
    m_osdu = startOsduEmulator(m_fast->settings(), m_options, kDatasets);

    // An earlier run signed in; the server's refresh tokens last less than the 30 days the panel
    // assumes when it is not told, so the stored session looks good but is dead.
    m_osdu->setRefreshTokenLifetime(std::chrono::milliseconds(1));
    {
        OsduFastInitializer earlier(OsduFastInitializer::AWS);
        earlier.authProvider()->setBrowserOpener(testBrowser());
        QSignalSpy authorized(earlier.authProvider().get(), &osdu::OsduAuthProvider::userAuthorized);
        QVERIFY(earlier.authProvider()->authorizeAsync(kSignInLimitMs));
        QVERIFY(authorized.wait(2 * kSignInLimitMs));
    }
    m_osdu->setRefreshTokenLifetime(std::chrono::hours(24));
    m_lapsedToken = storedToken();
    QVERIFY(!m_lapsedToken.isEmpty());
    for (const QString& key : kStoredSession)
        m_storedSession << QSettings().value(key);
    m_provider = OsduFastInitializer::instance(OsduFastInitializer::AWS)->authProvider();
    m_provider->setBrowserOpener(m_browser.opener(testBrowser()));
}

void FaultsOsduTest::init()
{
    QFETCH(QString, session);
    for (int i = 0; i < kStoredSession.size(); ++i)
        QSettings().setValue(kStoredSession.at(i), m_storedSession.at(i));
    // The provider as the initializer makes it, holding the lapsed session or none.
    osdu::OsduAuthProviderInitParams params;
    params.clientId = m_options.clientId;
    params.clientSecret = m_options.clientSecret;
    params.oauthUrl = m_osdu->authorizeUrl();
    params.oauthTokenUrl = m_osdu->tokenUrl();
    params.scope = "openid email";
    params.callbackUrl = "http://127.0.0.1";
    params.callbackPort = 0;
    params.refreshToken = session == "lapsed" ? m_lapsedToken.toStdString() : std::string();
    m_provider->initialize(params);
    m_page = std::make_unique<fast::OsduWidget>(m_fast->client(), m_fast->projectDir());
    if (session == "signed in") {
        QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(searchInput(*m_page)->isEnabled(), kSignInLimitMs);
    }
}

void FaultsOsduTest::cleanup()
{
    m_osdu->clearFaults();
    m_provider->setBrowserOpener(m_browser.opener(testBrowser()));
    if (!m_osdu->isRunning())
        m_osdu->start();
    m_fast->settings().remove("FAST", "OSDU_AUTHENTICATION_TIMEOUT");
    m_fast->settings().remove("AWS", "OSDU_FETCH_CONCURRENCY");
    m_fast->settings().set("AWS", "OSDU_BASE_URL", q(m_osdu->baseUrl()));
    qunsetenv("CURL_CA_BUNDLE");
    m_page.reset();
}

void FaultsOsduTest::faults_data()
{
    QTest::addColumn<QString>("session");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("fault");
    // What the user is told first; for a search, what the fetches after the first refusal say.
    QTest::addColumn<QString>("said");
    QTest::addColumn<QString>("later");

    const auto row = [](const char* tag, const char* session, const char* action, const char* fault,
                        const QString& said, const QString& later = {}) {
        QTest::newRow(tag) << QString(session) << QString(action) << QString(fault) << said << later;
    };
    const QString unreachable = kSignInBox + "Unable to reach the authorization server<br>";
    row("token endpoint closed", "lapsed", "connect", "closed", unreachable);
    row("stored session lapsed", "lapsed", "connect", "",
        kSignInBox + "Sign-in was refused by the authorization server<br>invalid_grant: The refresh token expired");
    row("token endpoint failing after the browser", "none", "connect", "failing",
        kSignInBox
            + "The authorization server failed to complete the sign-in<br>temporarily_unavailable: The "
              "authorization server is unavailable (injected)");
    row("token endpoint silent past the time-out", "none", "connect", "silent",
        unreachable + "Operation timed out after ");
    row("server back", "none", "connect", "", "");
    row("no browser, signed in from the copied address", "none", "copy", "no browser", "");
    row("no browser, cancelled", "none", "cancel", "no browser", "");
    row("no browser, the page closed", "none", "close", "no browser", "");
    row("cancelled during the code exchange", "none", "cancel", "silent", "");
    row("platform certificate untrusted", "signed in", "search", "untrusted",
        "Unable to query the record with id= in partition=opendes: Search failed: the platform could not be reached: "
        "SSL certificate problem: ");
    row("token endpoint certificate untrusted, a later run", "lapsed", "later run", "untrusted",
        "Unable to reach the authorization server: SSL certificate problem: ");
    // Turned away before and after a renewal: the session is over for the fetches after it.
    const QString ended = "Not signed in to the OSDU platform";
    row("token revoked, the renewed one turned away too", "signed in", "search", "revoked",
        "Unable to fetch record %1: status 401: The access token was rejected (injected)", ended);
    row("token and session revoked", "signed in", "search", "session revoked",
        "Unable to renew the OSDU access token: invalid_grant: The grant was revoked (injected)", ended);
    // A busy platform (status, every k-th or first n data requests): what the page says, and
    // the words of each retry's trace line.
    const QString all = QString("%1 result(s) found").arg(kDatasets);
    row("every third request throttled", "signed in", "busy search", "429 every 3", all, "answered 429, .* in 0 ms");
    // Dated two seconds ahead at a second's resolution: a wait of one to two seconds.
    row("throttled until an HTTP date", "signed in", "busy search", "429 first 1 date", all,
        "in (9\\d\\d|1\\d\\d\\d|2000) ms");
    row("bad gateway three times", "signed in", "busy search", "502 first 3", all, "answered 502");
    row("connection reset three times", "signed in", "busy search", "0 first 3", all, "cut off");
    row("bad gateway three times, over HTTP/2", "signed in", "busy search", "502 first 3 http2", all, "answered 502");
    row("unavailable throughout: four attempts", "signed in", "busy search", "503 every 1",
        "No result\nSearch failed with status 503: Service Unavailable (injected)", "answered 503");
}

void FaultsOsduTest::faults()
{
    QFETCH(QString, session);
    QFETCH(QString, action);
    QFETCH(QString, fault);
    QFETCH(QString, said);
    QFETCH(QString, later);
    EventBusRecorder bus;
    const int opened = m_browser.opened();
    const unsigned short port = m_osdu->port();
    constexpr int kSilenceMs = 4000;
    if (fault == "closed")
        m_osdu->stop();
    else if (fault == "failing")
        m_osdu->setTokenFault(emulator::TokenFault::Fail);
    if (fault == "silent" && action == "connect") {
        m_osdu->setDelay("/oauth2/token", kSilenceMs);
        m_fast->settings().set("FAST", "OSDU_AUTHENTICATION_TIMEOUT", "1");
    }

    if (action == "copy" || action == "cancel" || action == "close") {
        if (fault == "no browser")
            m_provider->setBrowserOpener(m_browser.opener([](const QUrl&) { return false; }));
        else
            m_osdu->setDelay("/oauth2/token", 2 * kSignInLimitMs);
        MessageBoxAnswerer boxes;
        QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
        QVERIFY(connectButton(*m_page)->text() == "Cancel" && connectButton(*m_page)->isEnabled());
        if (fault == "no browser") {
            QTRY_VERIFY(signInAddress(*m_page)->isVisibleTo(m_page.get()));
            QTest::mouseClick(copyAddressButton(*m_page), Qt::LeftButton);
            QCOMPARE(QGuiApplication::clipboard()->text(), m_browser.lastPage().toString(QUrl::FullyEncoded));
        } else {
            QTRY_VERIFY(!bus.texts(Information).filter("Completing the sign-in").isEmpty());
        }
        if (action == "copy") {
            testBrowser()(QUrl(QGuiApplication::clipboard()->text())); // the person's own browser
        } else {
            if (action == "cancel") // breaks off an exchange that would outlast the test
                QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
            else
                m_page = std::make_unique<fast::OsduWidget>(m_fast->client(), m_fast->projectDir());
            QVERIFY(!acceptsConnections(QHostAddress::LocalHost, m_browser.callbackPort()));
            // Nothing of it is left: the next Connect starts a sign-in of its own.
            m_osdu->clearFaults();
            m_provider->setBrowserOpener(m_browser.opener(testBrowser()));
            QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
            QCOMPARE(m_browser.opened(), opened + 2);
        }
        QTRY_VERIFY_WITH_TIMEOUT(searchInput(*m_page)->isEnabled(), kSignInLimitMs);
        QVERIFY(connectButton(*m_page)->text() == "Connect" && !signInAddress(*m_page)->isVisibleTo(m_page.get()));
        QVERIFY(boxes.boxes().isEmpty());
    } else if (action == "connect" && !said.isEmpty()) {
        MessageBoxAnswerer boxes;
        QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
        // A silent server: the time-out, not the server, ends the wait.
        QTRY_VERIFY_WITH_TIMEOUT(!boxes.boxes().isEmpty(), (fault == "silent" ? kSilenceMs : 15000));
        const QString box = boxes.summaries().join('\n');
        QVERIFY2(box.startsWith(said), qPrintable(box));
        QVERIFY(connectButton(*m_page)->isEnabled());
        // A sign-in that started keeps the stored session until another one replaces it.
        QCOMPARE(storedToken(), m_lapsedToken);
        QCOMPARE(m_browser.opened(), opened + (session == "none"));
        if (session == "none")
            QVERIFY(!acceptsConnections(QHostAddress::LocalHost, m_browser.callbackPort()));
        if (fault == "closed") {
            QVERIFY2(box.contains(QString("port %1").arg(port)), qPrintable(box));
            QCOMPARE(bus.texts(Information), QStringList{"OSDU Authentication: Signing in with the stored session"});
            QCOMPARE(bus.texts(Trace),
                     QStringList{"FAST OSDU authentication error 365 : " + box.mid(kSignInBox.size())});
            // Unreachable is not refused: the session is kept for when the server is back.
            QCOMPARE(m_provider->refreshToken(), m_lapsedToken);
        } else if (session == "lapsed") {
            // Forgotten by the provider, so that the next Connect opens the browser.
            QVERIFY(m_provider->refreshToken().isEmpty());
        }
    } else if (action == "connect") {
        QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(searchInput(*m_page)->isEnabled(), 15000);
        QVERIFY(storedToken() != m_lapsedToken && !storedToken().isEmpty());
        // Not told how long the new session lasts, the panel assumes 30 days.
        const QDateTime expiry = QSettings().value("AWS/OSDU_REFRESH_TOKEN_EXPIRY").toDateTime();
        QVERIFY(qAbs(QDateTime::currentDateTime().secsTo(expiry) - qint64(30) * 24 * 3600) < 60);
        QVERIFY(!acceptsConnections(QHostAddress::LocalHost, m_browser.callbackPort()));
    } else if (action == "busy search") {
        const QStringList knobs = fault.split(' ');
        emulator::Throttling throttling;
        throttling.status = knobs[0].toInt();
        (knobs[1] == "every" ? throttling.every : throttling.first) = knobs[2].toInt();
        if (fault.endsWith("date"))
            throttling.retryAfter = QLocale::c()
                                        .toString(QDateTime::currentDateTimeUtc().addSecs(2),
                                                  "ddd, dd MMM yyyy hh:mm:ss")
                                        .append(" GMT")
                                        .toStdString();
        // One request at a time: which ones the platform turns away is then known.
        m_fast->settings().set("AWS", "OSDU_FETCH_CONCURRENCY", "1");
        emulator::Http2Front front(m_osdu->port());
        if (fault.endsWith("http2")) {
            QVERIFY2(front.start(), front.failure().c_str());
            qputenv("CURL_CA_BUNDLE", QByteArray::fromStdString(front.certificateFile()));
            m_fast->settings().set("AWS", "OSDU_BASE_URL", q(front.baseUrl()));
            searchInput(*m_page)->initialize(); // as the page does after each sign-in
        }
        m_osdu->setThrottling(throttling);
        QVERIFY(search(*m_page));
        QCOMPARE(resultLabel(*m_page), said);
        const QStringList retries = bus.texts(Trace).filter(QRegularExpression("^OSDU request "));
        // Each answer turned away is tried again, but for the fourth attempt's.
        QCOMPARE(retries.size(), m_osdu->throttledRequests() - (said.startsWith("No") ? 1 : 0));
        QVERIFY2(retries.filter(QRegularExpression(later)).size() == retries.size(), qPrintable(retries.join('\n')));
    } else if (fault == "untrusted") {
        UntrustedTlsServer tls;
        QVERIFY2(tls.start(), qPrintable(tls.failure()));
        QString told;
        if (action == "search") {
            m_fast->settings().set("AWS", "OSDU_BASE_URL", tls.url());
            searchInput(*m_page)->initialize(); // as the page does after each sign-in
            QVERIFY(search(*m_page));
            QCOMPARE(resultLabel(*m_page).section('\n', 0, 0), "No result");
            QVERIFY(!QApplication::overrideCursor());
            told = bus.texts(Trace).filter("Unable to query the record").join('\n');
        } else {
            // A later run whose stored session goes to a token endpoint it must not trust.
            m_fast->settings().set("AWS", "OSDU_OAUTH_TOKEN_URL", tls.url() + "/oauth2/token");
            OsduFastInitializer laterRun(OsduFastInitializer::AWS);
            m_fast->settings().set("AWS", "OSDU_OAUTH_TOKEN_URL", q(m_osdu->tokenUrl()));
            bool browserOpened = false;
            laterRun.authProvider()->setBrowserOpener(forbiddenBrowser(&browserOpened));
            QSignalSpy failed(laterRun.authProvider().get(), &osdu::OsduAuthProvider::error);
            QVERIFY(laterRun.authProvider()->authorizeAsync(kSignInLimitMs));
            QVERIFY(failed.wait(2 * kSignInLimitMs));
            QVERIFY(!browserOpened);
            told = failed.at(0).at(0).toString() + ": " + failed.at(0).at(1).toString();
        }
        QVERIFY2(told.startsWith(said), qPrintable(told));
        QVERIFY2(told.contains(QRegularExpression("self.signed certificate$")), qPrintable(told));
        QVERIFY(tls.connections() > 0);
        QCOMPARE(tls.requestBytes(), QByteArray());
    } else {
        m_provider->accessToken(); // a fresh one: the search starts signed in
        // Which fetches the server still answers depends on their order: one at a time here.
        m_fast->settings().set("AWS", "OSDU_FETCH_CONCURRENCY", "1");
        m_osdu->rejectDataRequests(OsduEmulator::kEveryRequest, 1 + kFetched); // the query, then the first fetches
        if (fault == "session revoked")
            m_osdu->setTokenFault(emulator::TokenFault::Refuse);
        const int grants = m_osdu->issuedTokens().refreshGrants;
        MessageBoxAnswerer boxes;
        QVERIFY(search(*m_page));
        m_osdu->clearFaults();

        // The datasets not read are told, each reason once.
        QCOMPARE(resultLabel(*m_page), QString("%1 result(s) found\n%2 dataset(s) could not be read: %3; %4")
                                           .arg(kFetched)
                                           .arg(kDatasets - kFetched)
                                           .arg(QString(said).remove("Unable to fetch record %1: "), later));
        QCOMPARE(resultNames(*m_page), QStringList({"Volume 0001", "Volume 0002", "Volume 0003"}));
        QStringList expected;
        for (int number = kFetched + 1; number <= kDatasets; ++number) {
            const QString id = q(m_osdu->seededDatasetId(number));
            expected << "FAST FileCollectionSearch performSearch exception 97"
                     << QString("Unable to query the record with id=%1 in partition=opendes: %2")
                            .arg(id, QString(number == kFetched + 1 ? said : later).replace("%1", id));
        }
        QCOMPARE(bus.texts(Trace).filter(QRegularExpression("^(FAST FileCollectionSearch|Unable to query)")), expected);
        // A refused fetch renews the token once and tries once more.
        QCOMPARE(m_osdu->issuedTokens().refreshGrants - grants, fault == "session revoked" ? 0 : 1);
        QCOMPARE(boxes.summaries(), QStringList("OSDU session ended: The OSDU™ Data Platform session has ended. Press "
                                                "« Connect » to sign in again."));
        QVERIFY(connectButton(*m_page)->isEnabled());
        QVERIFY(searchButton(*m_page)->isEnabled() && searchInput(*m_page)->isEnabled()
                && !QApplication::overrideCursor());
    }
}

QTEST_MAIN(FaultsOsduTest)
#include "tst_faults_osdu.moc"
