// Signing in with a third-party OpenID Connect provider instead of our emulator (tests/oidc-server):
// its own login and consent pages, PKCE required, refresh tokens only when consent is prompted,
// access tokens that last one second. The OSDU emulator holds the data and checks each access
// token at the provider's userinfo. (The Azure way of client authentication: tst_osduclient.)

#include "EventBusRecorder.h"
#include "OidcServer.h"
#include "SignInWatch.h"
#include "TestBrowser.h"
#include "TestSettings.h"

#include <fast/osdu/FileCollectionSearch.h>
#include <fast/osdu/OsduFastInitializer.h>

#include <OsduEmulator.h>
#include <osdu/OsduAuthProvider.h>
#include <osdu/OsduHttpClient.h>

#include <QSettings>
#include <QtTest>

using fast::OsduFastInitializer;

constexpr int kDatasets = 3;

class ThirdPartySignInTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void signsInOnTheServersPagesAndTheNextRunNeedsNoBrowser();
    void withoutAConsentPromptNoSessionIsKept();

private:
    // The datasets the library's search finds with the provider's tokens; -1 when it failed.
    int datasetsFound(OsduFastInitializer& initializer);

    std::unique_ptr<OidcServer> m_server;
    std::unique_ptr<emulator::OsduEmulator> m_osdu;
    std::unique_ptr<TestSettings> m_settings;
};

void ThirdPartySignInTest::initTestCase()
{
    m_server = std::make_unique<OidcServer>(1, OidcClient{"fast-panel-aws", "aws-secret", "client_secret_basic"});
    QVERIFY2(m_server->isRunning(), qPrintable(m_server->failure()));
    emulator::OsduEmulatorOptions options;
    options.userinfoUrl = m_server->endpoint("/me").toStdString();
    m_osdu = std::make_unique<emulator::OsduEmulator>(options);
    m_osdu->seedDatasets(kDatasets);
    m_osdu->start();
}

void ThirdPartySignInTest::init()
{
    m_settings.reset(); // its end clears the settings store, which must not be the next one
    m_settings = std::make_unique<TestSettings>();
    m_server->configure(*m_settings, "AWS");
    m_settings->set("AWS", "OSDU_PROMPT", QStringLiteral("consent"));
    m_settings->set("AWS", "OSDU_BASE_URL", QString::fromStdString(m_osdu->baseUrl()));
    m_settings->set("AWS", "OSDU_DATA_PARTITION_ID", QStringLiteral("opendes"));
}

int ThirdPartySignInTest::datasetsFound(OsduFastInitializer& initializer)
{
    const auto client = std::make_shared<osdu::OsduHttpClient>(m_osdu->baseUrl(), initializer.authProvider());
    int found = -1;
    fast::createFileCollectionSearch(client)
        ->performSearch("AWS", "", [&found](const std::shared_ptr<osdu::StorageRecordCollection>& results) {
            found = results ? static_cast<int>(results->size()) : -1;
        });
    return found;
}

void ThirdPartySignInTest::signsInOnTheServersPagesAndTheNextRunNeedsNoBrowser()
{
    const int renewals = m_server->count("grant refresh_token");
    const QDateTime weekOld = QDateTime::currentDateTime().addDays(23);
    {
        OsduFastInitializer first(OsduFastInitializer::AWS);
        const auto visit = std::make_shared<BrowserVisit>();
        QVERIFY(signsIn(*first.authProvider(), testBrowser({}, visit)));
        // Its login page, then its consent page (asked for by the prompt).
        QCOMPARE(visit->formsAnswered, 2);
        QVERIFY(!QSettings().value("AWS/OSDU_REFRESH_TOKEN").toString().isEmpty());
        // As if that sign-in had been a week ago.
        QSettings().setValue("AWS/OSDU_REFRESH_TOKEN_EXPIRY", weekOld);
        // Its access token has already run out: the search renews it before it asks.
        QCOMPARE(datasetsFound(first), kDatasets);
        QVERIFY(m_server->count("grant refresh_token") > renewals);
    }
    OsduFastInitializer next(OsduFastInitializer::AWS);
    QVERIFY(signsInWithoutBrowser(*next.authProvider()));
    QCOMPARE(datasetsFound(next), kDatasets);
    // Its renewals hand the same refresh token back, which lasts no longer for it.
    QCOMPARE(QSettings().value("AWS/OSDU_REFRESH_TOKEN_EXPIRY").toDateTime(), weekOld);
}

void ThirdPartySignInTest::withoutAConsentPromptNoSessionIsKept()
{
    m_settings->set("AWS", "OSDU_PROMPT", QString());
    EventBusRecorder bus;
    OsduFastInitializer initializer(OsduFastInitializer::AWS);
    QVERIFY(signsIn(*initializer.authProvider(), testBrowser()));
    // Offline access is not granted without the prompt.
    QVERIFY(!QSettings().contains("AWS/OSDU_REFRESH_TOKEN"));
    // Said once, not at every sign-in of the run.
    QVERIFY(signsIn(*initializer.authProvider(), testBrowser()));
    QCOMPARE(bus.texts(Information).filter("gave no refresh token").size(), 1);
    // The access token it did give has run out, and there is nothing to renew it with.
    QCOMPARE(datasetsFound(initializer), 0);
    QCOMPARE(bus.texts(Trace).filter("Not signed in to the OSDU platform").size(), 1);
}

QTEST_MAIN(ThirdPartySignInTest)
#include "tst_thirdpartysignin.moc"
