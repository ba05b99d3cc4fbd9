// The OSDU page when the platform or its authorization server lets it down: the token endpoint
// closed, failing or silent, a stored session the server has let lapse, a certificate nobody
// trusts, and an access token revoked in the middle of a search. Each ends in the library's own
// words, with Connect or Search ready again and nothing left listening.
// One initializer per process: the cases follow each other on the same page.

#include "EventBusRecorder.h"
#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "OsduEmulatorSettings.h"
#include "PanelDriver.h"
#include "PanelTexts.h"
#include "SignInWatch.h"
#include "TestBrowser.h"
#include "UntrustedTlsServer.h"

#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/OsduWidget.h>

#include <osdu/OsduAuthProvider.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QSettings>
#include <QtTest>

using emulator::OsduEmulator;
using fast::OsduFastInitializer;

namespace {

constexpr int kDatasets = 6;
const QString kSignInBox = "Failed to connect to OSDU environment: ";

QString storedToken()
{
    return QSettings().value("AWS/OSDU_REFRESH_TOKEN").toString();
}

} // namespace

class FaultsOsduTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tokenEndpointWithItsPortClosed();
    void aStoredSessionTheServerLetLapseIsRefusedThenForgotten();
    void tokenEndpointFailingOrSilentAfterTheBrowser_data();
    void tokenEndpointFailingOrSilentAfterTheBrowser();
    void signInSucceedsOnceTheServerIsBack();
    void anUntrustedCertificateIsRefused_data();
    void anUntrustedCertificateIsRefused();
    void aTokenRevokedInTheMiddleOfASearch_data();
    void aTokenRevokedInTheMiddleOfASearch();

private:
    // Presses Connect and answers the box the sign-in ends with: "title: text".
    QString connectAndReadTheBox();

    std::unique_ptr<FastEmulatorFixture> m_fast;
    std::unique_ptr<OsduEmulator> m_osdu;
    std::unique_ptr<fast::OsduWidget> m_page;
    SignInWatch m_browser;
    QString m_lapsedToken;
};

void FaultsOsduTest::initTestCase()
{
    m_fast = std::make_unique<FastEmulatorFixture>();
    emulator::OsduEmulatorOptions options;
    options.announceRefreshTokenLifetime = false;
    m_osdu = startOsduEmulator(m_fast->settings(), options, kDatasets);

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

    m_page = std::make_unique<fast::OsduWidget>(m_fast->client(), m_fast->projectDir());
    const auto initializer = OsduFastInitializer::instance(OsduFastInitializer::AWS);
    initializer->authProvider()->setBrowserOpener(m_browser.opener(testBrowser()));
}

QString FaultsOsduTest::connectAndReadTheBox()
{
    MessageBoxAnswerer boxes;
    QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
    if (!QTest::qWaitFor([&boxes] { return !boxes.boxes().isEmpty(); }, 15000))
        return QString();
    return boxes.summaries().join('\n');
}

void FaultsOsduTest::tokenEndpointWithItsPortClosed()
{
    const unsigned short port = m_osdu->port();
    m_osdu->stop();
    EventBusRecorder bus;
    const QString box = connectAndReadTheBox();
    m_osdu->start();

    QVERIFY2(box.startsWith(kSignInBox + "Unable to reach the authorization server<br>"), qPrintable(box));
    QVERIFY2(box.contains(QString("port %1").arg(port)), qPrintable(box));
    QCOMPARE(bus.texts(Information), QStringList{"OSDU Authentication: Signing in with the stored session"});
    QCOMPARE(bus.texts(Trace), QStringList{"FAST OSDU authentication error 365 : " + box.mid(kSignInBox.size())});
    QCOMPARE(m_browser.opened(), 0);
    QVERIFY(connectButton(*m_page)->isEnabled());
    // Unreachable is not refused: the session is kept for when the server is back.
    QCOMPARE(OsduFastInitializer::currentInstance()->authProvider()->refreshToken(), m_lapsedToken);
}

void FaultsOsduTest::aStoredSessionTheServerLetLapseIsRefusedThenForgotten()
{
    const QString box = connectAndReadTheBox();
    QCOMPARE(box, kSignInBox
                      + "Sign-in was refused by the authorization server<br>invalid_grant: The refresh token expired");
    QCOMPARE(m_browser.opened(), 0);
    QVERIFY(connectButton(*m_page)->isEnabled());
    // Forgotten by the provider, so the next Connect opens the browser (the cases below); the
    // record itself stays until a sign-in replaces it.
    QVERIFY(OsduFastInitializer::currentInstance()->authProvider()->refreshToken().isEmpty());
    QCOMPARE(storedToken(), m_lapsedToken);
}

void FaultsOsduTest::tokenEndpointFailingOrSilentAfterTheBrowser_data()
{
    QTest::addColumn<bool>("silent");
    QTest::addColumn<QString>("message");
    QTest::newRow("failing") << false
                             << "The authorization server failed to complete the sign-in<br>temporarily_unavailable: "
                                "The authorization server is unavailable (injected)";
    QTest::newRow("silent past the time-out")
        << true << "Unable to reach the authorization server<br>Operation timed out after ";
}

void FaultsOsduTest::tokenEndpointFailingOrSilentAfterTheBrowser()
{
    QFETCH(bool, silent);
    QFETCH(QString, message);
    constexpr int kSilenceMs = 4000;
    if (silent) {
        m_osdu->setDelay("/oauth2/token", kSilenceMs);
        m_fast->settings().set("FAST", "OSDU_AUTHENTICATION_TIMEOUT", "1");
    } else {
        m_osdu->setTokenFault(emulator::TokenFault::Fail);
    }
    const int opened = m_browser.opened();
    QElapsedTimer clock;
    clock.start();
    const QString box = connectAndReadTheBox();
    const qint64 elapsedMs = clock.elapsed();
    m_osdu->clearFaults();
    m_fast->settings().remove("FAST", "OSDU_AUTHENTICATION_TIMEOUT");

    QVERIFY2(box.startsWith(kSignInBox + message), qPrintable(box));
    QCOMPARE(m_browser.opened(), opened + 1);
    if (silent)
        QVERIFY2(elapsedMs < kSilenceMs, "the time-out, not the server, ended the wait");
    QVERIFY(!acceptsConnections(QHostAddress::LocalHost, m_browser.callbackPort()));
    QVERIFY(connectButton(*m_page)->isEnabled());
    QCOMPARE(storedToken(), m_lapsedToken);
}

void FaultsOsduTest::signInSucceedsOnceTheServerIsBack()
{
    QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(searchInput(*m_page)->isEnabled(), 15000);
    QVERIFY(storedToken() != m_lapsedToken && !storedToken().isEmpty());
    // Not told how long the new session lasts, the panel assumes 30 days.
    const QDateTime expiry = QSettings().value("AWS/OSDU_REFRESH_TOKEN_EXPIRY").toDateTime();
    QVERIFY(qAbs(QDateTime::currentDateTime().secsTo(expiry) - qint64(30) * 24 * 3600) < 60);
    QVERIFY(!acceptsConnections(QHostAddress::LocalHost, m_browser.callbackPort()));
}

void FaultsOsduTest::anUntrustedCertificateIsRefused_data()
{
    QTest::addColumn<bool>("platform");
    QTest::addColumn<QString>("failure");
    QTest::newRow("the platform") << true
                                  << "Unable to query the record with id= in partition=opendes: Search failed: the "
                                     "platform could not be reached: SSL certificate problem: ";
    QTest::newRow("the authorization server")
        << false << "Unable to reach the authorization server: SSL certificate problem: ";
}

void FaultsOsduTest::anUntrustedCertificateIsRefused()
{
    QFETCH(bool, platform);
    QFETCH(QString, failure);
    UntrustedTlsServer tls;
    QVERIFY2(tls.start(), qPrintable(tls.failure()));
    EventBusRecorder bus;
    QString said;
    if (platform) {
        m_fast->settings().set("AWS", "OSDU_BASE_URL", tls.url());
        searchInput(*m_page)->initialize(); // as the page does after each sign-in
        QVERIFY(search(*m_page));
        m_fast->settings().set("AWS", "OSDU_BASE_URL", q(m_osdu->baseUrl()));
        searchInput(*m_page)->initialize();
        QCOMPARE(resultLabel(*m_page), "No result");
        QVERIFY(!QApplication::overrideCursor());
        said = bus.texts(Trace).filter("Unable to query the record").join('\n');
    } else {
        // A later run whose stored session goes to a token endpoint it must not trust.
        m_fast->settings().set("AWS", "OSDU_OAUTH_TOKEN_URL", tls.url() + "/oauth2/token");
        OsduFastInitializer later(OsduFastInitializer::AWS);
        m_fast->settings().set("AWS", "OSDU_OAUTH_TOKEN_URL", q(m_osdu->tokenUrl()));
        bool opened = false;
        later.authProvider()->setBrowserOpener(forbiddenBrowser(&opened));
        QSignalSpy failed(later.authProvider().get(), &osdu::OsduAuthProvider::error);
        QVERIFY(later.authProvider()->authorizeAsync(kSignInLimitMs));
        QVERIFY(failed.wait(2 * kSignInLimitMs));
        QVERIFY(!opened);
        said = failed.at(0).at(0).toString() + ": " + failed.at(0).at(1).toString();
    }
    QVERIFY2(said.startsWith(failure), qPrintable(said));
    QVERIFY2(said.contains(QRegularExpression("self.signed certificate$")), qPrintable(said));
    QVERIFY(tls.connections() > 0);
    QCOMPARE(tls.requestBytes(), QByteArray());
}

void FaultsOsduTest::aTokenRevokedInTheMiddleOfASearch_data()
{
    QTest::addColumn<bool>("sessionRevoked");
    QTest::addColumn<QString>("firstFailure");
    QTest::addColumn<QString>("laterFailure");
    const QString rejected = "Unable to fetch record %1: status 401: The access token was rejected (injected)";
    // Turned away before and after a renewal: the session is over for the fetches after it.
    QTest::newRow("renewed token turned away too") << false << rejected << "Not signed in to the OSDU platform";
    QTest::newRow("session revoked as well")
        << true << "Unable to renew the OSDU access token: invalid_grant: The grant was revoked (injected)"
        << "Not signed in to the OSDU platform";
}

void FaultsOsduTest::aTokenRevokedInTheMiddleOfASearch()
{
    QFETCH(bool, sessionRevoked);
    QFETCH(QString, firstFailure);
    QFETCH(QString, laterFailure);
    constexpr int kFetched = 3;
    const std::shared_ptr<osdu::OsduAuthProvider> provider = OsduFastInitializer::currentInstance()->authProvider();
    if (connectButton(*m_page)->isEnabled()) { // the row before ended the session
        QSignalSpy authorized(provider.get(), &osdu::OsduAuthProvider::userAuthorized);
        QTest::mouseClick(connectButton(*m_page), Qt::LeftButton);
        QVERIFY(authorized.wait(kSignInLimitMs));
    }
    provider->accessToken(); // a fresh one: the search starts signed in whatever came before
    // Which fetches the server still answers depends on their order: one at a time here.
    m_fast->settings().set("AWS", "OSDU_FETCH_CONCURRENCY", "1");
    m_osdu->rejectDataRequests(OsduEmulator::kEveryRequest, 1 + kFetched); // the query, then the first fetches
    if (sessionRevoked)
        m_osdu->setTokenFault(emulator::TokenFault::Refuse);
    const int grants = m_osdu->issuedTokens().refreshGrants;
    EventBusRecorder bus;
    MessageBoxAnswerer boxes;
    QVERIFY(search(*m_page));
    m_osdu->clearFaults();

    QCOMPARE(resultLabel(*m_page), QString("%1 result(s) found").arg(kFetched));
    QCOMPARE(resultNames(*m_page), QStringList({"Volume 0001", "Volume 0002", "Volume 0003"}));
    QStringList expected;
    for (int number = kFetched + 1; number <= kDatasets; ++number) {
        const QString id = q(m_osdu->seededDatasetId(number));
        const QString why = QString(number == kFetched + 1 ? firstFailure : laterFailure).replace("%1", id);
        expected << "FAST FileCollectionSearch performSearch exception 97"
                 << QString("Unable to query the record with id=%1 in partition=opendes: %2").arg(id, why);
    }
    QCOMPARE(bus.texts(Trace).filter(QRegularExpression("^(FAST FileCollectionSearch|Unable to query)")), expected);
    // A refused fetch renews the token once and tries once more.
    QCOMPARE(m_osdu->issuedTokens().refreshGrants - grants, sessionRevoked ? 0 : 1);
    QCOMPARE(boxes.summaries(), QStringList("OSDU session ended: The OSDU™ Data Platform session has ended. Press « "
                                            "Connect » to sign in again."));
    QVERIFY(connectButton(*m_page)->isEnabled());
    QVERIFY(searchButton(*m_page)->isEnabled() && searchInput(*m_page)->isEnabled() && !QApplication::overrideCursor());
}

QTEST_MAIN(FaultsOsduTest)
#include "tst_faults_osdu.moc"
