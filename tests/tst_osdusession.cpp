// How long an OSDU session lasts against the emulator, which can misbehave on purpose: what is
// kept for the next run when a renewal keeps or rotates the refresh token, and what the page does
// when a session can no longer be renewed. The prompt that makes a strict server issue a refresh
// token at all is tested against a third-party server (tst_thirdpartysignin). The page's cases use
// the one initializer of the process.

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

constexpr int kLimitMs = 30000;

// Signs in once, as a run of the panel does, through the browser or the stored session.
bool signIn(OsduFastInitializer& initializer)
{
    initializer.authProvider()->setBrowserOpener(testBrowser());
    QSignalSpy authorized(initializer.authProvider().get(), &osdu::OsduAuthProvider::userAuthorized);
    return initializer.authProvider()->authorizeAsync(kLimitMs) && authorized.wait(kLimitMs);
}

QVariant stored(const char* key)
{
    return QSettings().value(QStringLiteral("AWS/") + key);
}

} // namespace

class OsduSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRenewalThatKeepsTheTokenKeepsItsExpiry();
    void aTokenRotatedByARenewalIsKeptForTheNextRun();
    void anEndedSessionIsToldAndConnectSignsInAgain();
};

void OsduSessionTest::aRenewalThatKeepsTheTokenKeepsItsExpiry()
{
    TestSettings settings;
    emulator::OsduEmulatorOptions options;
    options.rotateRefreshTokens = false;
    options.announceRefreshTokenLifetime = false;
    const auto osdu = startOsduEmulator(settings, options, 0);
    {
        OsduFastInitializer first(OsduFastInitializer::AWS);
        QVERIFY(signIn(first));
    }
    const QString token = stored("OSDU_REFRESH_TOKEN").toString();
    const QDateTime expiry = stored("OSDU_REFRESH_TOKEN_EXPIRY").toDateTime();
    QVERIFY(!token.isEmpty() && expiry.isValid());
    // As if that first run had been a week ago.
    QSettings().setValue("AWS/OSDU_REFRESH_TOKEN_EXPIRY", expiry.addDays(-7));

    OsduFastInitializer later(OsduFastInitializer::AWS);
    QVERIFY(signsInWithoutBrowser(*later.authProvider()));
    QCOMPARE(osdu->issuedTokens().refreshGrants, 1);
    QCOMPARE(stored("OSDU_REFRESH_TOKEN").toString(), token);
    QCOMPARE(stored("OSDU_REFRESH_TOKEN_EXPIRY").toDateTime(), expiry.addDays(-7));
}

void OsduSessionTest::aTokenRotatedByARenewalIsKeptForTheNextRun()
{
    TestSettings settings;
    const auto osdu = startOsduEmulator(settings, {}, 0);
    // The token signed in with is already due for renewal at its first use.
    osdu->setAccessTokenLifetime(std::chrono::seconds(1));
    {
        OsduFastInitializer first(OsduFastInitializer::AWS);
        QVERIFY(signIn(first));
        const QString signedIn = stored("OSDU_REFRESH_TOKEN").toString();
        // As a search's request does, on a thread of its own.
        std::unique_ptr<QThread> search(QThread::create([&first] { first.authProvider()->accessToken(); }));
        search->start();
        QVERIFY(search->wait(kLimitMs));
        QTRY_VERIFY(stored("OSDU_REFRESH_TOKEN").toString() != signedIn);
        QCOMPARE(stored("OSDU_REFRESH_TOKEN").toString(), first.authProvider()->refreshToken());
    }
    // The rotated-out token is dead: only the kept one signs the next run in without a browser.
    OsduFastInitializer later(OsduFastInitializer::AWS);
    QVERIFY(signsInWithoutBrowser(*later.authProvider()));
    QCOMPARE(osdu->issuedTokens().refreshGrants, 2);
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
    const QString ended = "OSDU session ended: The OSDU™ Data Platform session has ended. Press « Connect » to sign "
                          "in again.";

    const std::vector<std::pair<const char*, std::function<void()>>> endings{
        {"no refresh token was issued", [&osdu] { osdu->setRefreshTokenOnlyWithConsent(true); }},
        {"the renewal is refused", [&osdu] { osdu->setTokenFault(emulator::TokenFault::Refuse); }},
        {"a renewed token is turned away", [&osdu] { osdu->rejectDataRequests(); }},
    };
    bool signedIn = false;
    for (const auto& [how, end] : endings) {
        MessageBoxAnswerer boxes;
        end();
        // The first ending comes with the sign-in itself.
        QVERIFY2(signedIn ? search(page) : connectAndSearch(page, *provider), how);
        QTRY_COMPARE(boxes.summaries(), QStringList(ended));
        QCOMPARE(resultLabel(page), "No result");
        QVERIFY2(connectButton(page)->isEnabled(), how);

        osdu->clearFaults();
        osdu->setRefreshTokenOnlyWithConsent(false);
        QVERIFY2(connectAndSearch(page, *provider), how);
        QCOMPARE(resultLabel(page), "3 result(s) found");
        QVERIFY(!connectButton(page)->isEnabled());
        QCOMPARE(boxes.boxes().size(), 1);
        signedIn = true;
    }
}

QTEST_MAIN(OsduSessionTest)
#include "tst_osdusession.moc"
