// Signing in with a third-party OpenID Connect provider instead of our emulator: a conformant
// server (tests/oidc-server, installed by ./dev) with its own login and consent pages, PKCE
// required, refresh tokens only when consent is prompted. Its access tokens last one second, so
// that every use of one renews it first. The OSDU emulator holds the data and takes the provider's
// access tokens, checking each at the provider's userinfo. (A forged state and a session that ends:
// tst_osduclient and tst_osdusession, against the emulator.)

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

namespace {

const OidcClient kAwsClient{QStringLiteral("fast-panel-aws"), QStringLiteral("aws-secret"),
                            QStringLiteral("client_secret_basic")};
const OidcClient kAzureClient{QStringLiteral("fast-panel-azure"), QStringLiteral("azure-secret"),
                              QStringLiteral("client_secret_post")};
constexpr int kDatasets = 3;

const char* groupOf(OsduFastInitializer::eCloudProvider provider)
{
    return provider == OsduFastInitializer::AWS ? "AWS" : "Azure";
}

QString stored(OsduFastInitializer::eCloudProvider provider, const char* key)
{
    return QSettings().value(QStringLiteral("%1/%2").arg(groupOf(provider), key)).toString();
}

// Signs in with browser; true once the provider says it is done.
bool signIn(OsduFastInitializer& initializer, osdu::OsduAuthProvider::BrowserOpener browser)
{
    initializer.authProvider()->setBrowserOpener(std::move(browser));
    QSignalSpy authorized(initializer.authProvider().get(), &osdu::OsduAuthProvider::userAuthorized);
    return initializer.authProvider()->authorizeAsync(kSignInLimitMs) && authorized.wait(kSignInLimitMs);
}

} // namespace

class ThirdPartySignInTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void signsInOnTheServersPagesAndTheNextRunNeedsNoBrowser_data();
    void signsInOnTheServersPagesAndTheNextRunNeedsNoBrowser();
    void withoutAConsentPromptNoSessionIsKept();

private:
    // The datasets the library's search finds with the provider's tokens; -1 when it failed.
    int datasetsFound(OsduFastInitializer& initializer, OsduFastInitializer::eCloudProvider provider);
    void configure(TestSettings& settings, OsduFastInitializer::eCloudProvider provider);

    std::unique_ptr<OidcServer> m_server;
    std::unique_ptr<emulator::OsduEmulator> m_osdu;
};

void ThirdPartySignInTest::initTestCase()
{
    m_server = std::make_unique<OidcServer>(1, QList<OidcClient>{kAwsClient, kAzureClient});
    QVERIFY2(m_server->isRunning(), qPrintable(m_server->failure()));
    emulator::OsduEmulatorOptions options;
    options.userinfoUrl = m_server->endpoint("userinfo_endpoint").toStdString();
    m_osdu = std::make_unique<emulator::OsduEmulator>(options);
    m_osdu->seedDatasets(kDatasets);
    m_osdu->start();
}

void ThirdPartySignInTest::configure(TestSettings& settings, OsduFastInitializer::eCloudProvider provider)
{
    const QString group = QString::fromLatin1(groupOf(provider));
    m_server->configure(settings, group, provider == OsduFastInitializer::AWS ? kAwsClient : kAzureClient);
    settings.set(group, "OSDU_PROMPT", QStringLiteral("consent"));
    settings.set(group, "OSDU_BASE_URL", QString::fromStdString(m_osdu->baseUrl()));
    settings.set(group, "OSDU_DATA_PARTITION_ID", QStringLiteral("opendes"));
}

int ThirdPartySignInTest::datasetsFound(OsduFastInitializer& initializer, OsduFastInitializer::eCloudProvider provider)
{
    const auto client = std::make_shared<osdu::OsduHttpClient>(m_osdu->baseUrl(), initializer.authProvider());
    int found = -1;
    fast::createFileCollectionSearch(client)
        ->performSearch(groupOf(provider), "", [&found](const std::shared_ptr<osdu::StorageRecordCollection>& results) {
            found = results ? static_cast<int>(results->size()) : -1;
        });
    return found;
}

void ThirdPartySignInTest::signsInOnTheServersPagesAndTheNextRunNeedsNoBrowser_data()
{
    QTest::addColumn<int>("providerColumn");
    QTest::newRow("AWS: client secret in Basic") << int(OsduFastInitializer::AWS);
    QTest::newRow("Azure: client secret in the form") << int(OsduFastInitializer::Azure);
}

void ThirdPartySignInTest::signsInOnTheServersPagesAndTheNextRunNeedsNoBrowser()
{
    QFETCH(int, providerColumn);
    const auto provider = static_cast<OsduFastInitializer::eCloudProvider>(providerColumn);
    TestSettings settings;
    configure(settings, provider);
    const int codeGrants = m_server->count("grant authorization_code");
    const int renewals = m_server->count("grant refresh_token");
    {
        OsduFastInitializer first(provider);
        const auto visit = std::make_shared<BrowserVisit>();
        QVERIFY(signIn(first, testBrowser({}, visit)));
        QCOMPARE(visit->status, 200L);
        // Its login page, then its consent page (asked for by the prompt).
        QCOMPARE(visit->formsAnswered, 2);
        QCOMPARE(m_server->count("grant authorization_code"), codeGrants + 1);
        QVERIFY(!stored(provider, "OSDU_REFRESH_TOKEN").isEmpty());
        // Its access token has already run out: the search renews it before it asks.
        QCOMPARE(datasetsFound(first, provider), kDatasets);
        QVERIFY(m_server->count("grant refresh_token") > renewals);
    }
    OsduFastInitializer next(provider);
    QVERIFY(signsInWithoutBrowser(*next.authProvider()));
    QCOMPARE(datasetsFound(next, provider), kDatasets);
    QCOMPARE(m_server->count("grant authorization_code"), codeGrants + 1);
    QVERIFY(!m_server->events().contains(QStringLiteral("grant-error invalid_grant")));
}

void ThirdPartySignInTest::withoutAConsentPromptNoSessionIsKept()
{
    TestSettings settings;
    configure(settings, OsduFastInitializer::AWS);
    settings.set("AWS", "OSDU_PROMPT", QString());
    EventBusRecorder bus;
    OsduFastInitializer initializer(OsduFastInitializer::AWS);
    const auto visit = std::make_shared<BrowserVisit>();
    QVERIFY(signIn(initializer, testBrowser({}, visit)));
    // Consent is still asked the first time; offline access is not granted without the prompt.
    QCOMPARE(visit->formsAnswered, 2);
    QVERIFY(!QSettings().contains("AWS/OSDU_REFRESH_TOKEN"));
    QCOMPARE(bus.texts(Information).filter("gave no refresh token").size(), 1);
    // Said once, not at every sign-in of the run.
    QVERIFY(signIn(initializer, testBrowser()));
    QCOMPARE(bus.texts(Information).filter("gave no refresh token").size(), 1);
    // The access token it did give has run out, and there is nothing to renew it with.
    QCOMPARE(datasetsFound(initializer, OsduFastInitializer::AWS), 0);
    QCOMPARE(bus.texts(Trace).filter("Not signed in to the OSDU platform").size(), 1);
}

QTEST_MAIN(ThirdPartySignInTest)
#include "tst_thirdpartysignin.moc"
