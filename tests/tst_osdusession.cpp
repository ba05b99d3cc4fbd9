// How long an OSDU session lasts against the emulator: what a renewal leaves for the next run,
// and what the page does when a session can no longer be renewed.

#include "FastEmulatorFixture.h"
#include "MessageBoxAnswerer.h"
#include "OsduEmulatorSettings.h"
#include "PanelDriver.h"
#include "SignInWatch.h"
#include "TestBrowser.h"
#include "TestSettings.h"

#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/OsduWidget.h>

#include <osdu/OsduAuthProvider.h>

#include <QPushButton>
#include <QSettings>
#include <QtTest>

using fast::OsduFastInitializer;

namespace {

QVariant stored(const char* key)
{
    return QSettings().value(QStringLiteral("AWS/") + key);
}

} // namespace

class OsduSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRenewedTokenIsKeptForTheNextRun_data();
    void aRenewedTokenIsKeptForTheNextRun();
    void anEndedSessionIsToldAndConnectSignsInAgain();
};

void OsduSessionTest::aRenewedTokenIsKeptForTheNextRun_data()
{
    QTest::addColumn<bool>("rotates");
    QTest::newRow("renewals keep the refresh token and its expiry") << false;
    QTest::newRow("renewals rotate it") << true;
}

void OsduSessionTest::aRenewedTokenIsKeptForTheNextRun()
{
    QFETCH(bool, rotates);
    TestSettings settings;
    emulator::OsduEmulatorOptions options;
    options.rotateRefreshTokens = rotates;
    options.announceRefreshTokenLifetime = false;
    const auto osdu = startOsduEmulator(settings, options, 0);
    // The token signed in with is already due for renewal at its first use.
    osdu->setAccessTokenLifetime(std::chrono::seconds(1));
    QDateTime weekAgo;
    {
        OsduFastInitializer first(OsduFastInitializer::AWS);
        QVERIFY(signsIn(*first.authProvider(), testBrowser()));
        const QString signedIn = stored("OSDU_REFRESH_TOKEN").toString();
        // As if that sign-in had been a week ago.
        weekAgo = stored("OSDU_REFRESH_TOKEN_EXPIRY").toDateTime().addDays(-7);
        QSettings().setValue("AWS/OSDU_REFRESH_TOKEN_EXPIRY", weekAgo);
        // As a search's request does, on a thread of its own.
        std::unique_ptr<QThread> search(QThread::create([&first] { first.authProvider()->accessToken(); }));
        search->start();
        QVERIFY(search->wait(kSignInLimitMs));
        QTRY_COMPARE(osdu->issuedTokens().refreshGrants, 1);
        QTRY_COMPARE(stored("OSDU_REFRESH_TOKEN").toString() != signedIn, rotates);
        QCOMPARE(stored("OSDU_REFRESH_TOKEN").toString(), first.authProvider()->refreshToken());
    }
    // A rotated-out token is dead: only the kept one signs the next run in without a browser.
    OsduFastInitializer later(OsduFastInitializer::AWS);
    QVERIFY(signsInWithoutBrowser(*later.authProvider()));
    QCOMPARE(osdu->issuedTokens().refreshGrants, 2);
    QCOMPARE(stored("OSDU_REFRESH_TOKEN_EXPIRY").toDateTime() == weekAgo, !rotates);
}

void OsduSessionTest::anEndedSessionIsToldAndConnectSignsInAgain()
{
    FastEmulatorFixture fast;
    const auto osdu = startOsduEmulator(fast.settings(), {}, 3);
    // Every use of a token renews it first.
    osdu->setAccessTokenLifetime(std::chrono::seconds(1));
    fast::OsduWidget page(fast.client(), fast.projectDir());
    page.show();
    const auto provider = OsduFastInitializer::instance(OsduFastInitializer::AWS)->authProvider();
    provider->setBrowserOpener(testBrowser());
    MessageBoxAnswerer boxes;
    // A server that keeps refresh tokens for those who asked for consent gives this sign-in none:
    // its access token cannot be renewed. (A renewal refused or turned away: tst_faults_osdu.)
    osdu->setRefreshTokenOnlyWithConsent(true);
    QVERIFY(connectAndSearch(page, *provider));
    QTRY_VERIFY(boxes.summaries().value(0).startsWith("OSDU session ended: "));   // its text: tst_faults_osdu
    QCOMPARE(resultLabel(page), "No result\nNot signed in to the OSDU platform"); // told why
    QVERIFY(connectButton(page)->isEnabled());

    osdu->setRefreshTokenOnlyWithConsent(false);
    QVERIFY(connectAndSearch(page, *provider));
    QCOMPARE(resultLabel(page), "3 result(s) found");
    QVERIFY(!connectButton(page)->isEnabled());
    QCOMPARE(boxes.boxes().size(), 1);
}

QTEST_MAIN(OsduSessionTest)
#include "tst_osdusession.moc"
