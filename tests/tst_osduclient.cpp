// The OSDU client library against the OSDU emulator over real HTTP: sign-in through the browser
// and with a stored session, failures as the caller sees them, token renewal, Search and Storage.

#include <OsduEmulator.h>

#include <osdu/AWSOsduAuthProvider.h>
#include <osdu/AzureOsduAuthProvider.h>
#include <osdu/FileCollection.h>
#include <osdu/OsduHttpClient.h>
#include <osdu/Search.h>
#include <osdu/Storage.h>
#include <osdu/StorageRecordFactory.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <future>
#include <set>
#include <thread>

using osdu::OsduAuthProvider;

namespace {

constexpr int TimeoutMs = 5000;
const std::string Secret = "fast-panel-secret";

// A blocking GET over a plain socket, as a browser sends it; the answer with its headers.
QByteArray httpGet(const QUrl& url)
{
    QTcpSocket socket;
    socket.connectToHost(url.host(), static_cast<quint16>(url.port(80)));
    if (!socket.waitForConnected(TimeoutMs))
        return {};
    socket.write("GET " + url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority) + " HTTP/1.1\r\nHost: "
                 + url.host().toUtf8() + "\r\nConnection: close\r\n\r\n");
    QByteArray answer;
    while (socket.waitForReadyRead(TimeoutMs))
        answer += socket.readAll();
    return answer;
}

// The person at the browser: follows the authorization server's redirect back to the loopback
// listener, on a thread of its own as a browser would.
struct Browser
{
    bool forgeState = false;
    quint16 callbackPort = 0;
    QByteArray code;
    QByteArray page; // what the listener answered
    std::thread worker;

    ~Browser() { finish(); }
    void finish()
    {
        if (worker.joinable())
            worker.join();
    }
    bool open(QUrl url)
    {
        finish();
        QUrlQuery query(url);
        callbackPort = static_cast<quint16>(QUrl(query.queryItemValue("redirect_uri", QUrl::FullyDecoded)).port());
        if (forgeState) {
            query.removeQueryItem("state");
            query.addQueryItem("state", "forged");
            url.setQuery(query);
        }
        worker = std::thread([this, url] {
            const QByteArray redirect = httpGet(url);
            const int at = redirect.indexOf("\r\nLocation: ") + 12;
            const QUrl callback = QUrl::fromEncoded(redirect.mid(at, redirect.indexOf("\r\n", at) - at));
            code = QUrlQuery(callback).queryItemValue("code").toUtf8();
            page = httpGet(callback);
        });
        return true;
    }
};

struct Signals
{
    explicit Signals(OsduAuthProvider& provider)
        : authorized(&provider, &OsduAuthProvider::userAuthorized), errors(&provider, &OsduAuthProvider::error),
          infos(&provider, &OsduAuthProvider::info)
    {
    }
    QString said() const
    {
        QStringList words;
        for (const QSignalSpy* spy : {&errors, &infos})
            for (const QList<QVariant>& arguments : *spy)
                for (const QVariant& argument : arguments)
                    words << argument.toString();
        return words.join('\n');
    }
    QSignalSpy authorized, errors, infos;
};

emulator::OsduEmulatorOptions withSecret(const std::string& secret)
{
    emulator::OsduEmulatorOptions options;
    options.clientSecret = secret;
    return options;
}

struct Platform
{
    explicit Platform(bool aws = false, const std::string& secret = Secret) : server(withSecret(secret))
    {
        server.start();
        provider = aws ? std::shared_ptr<OsduAuthProvider>(std::make_shared<osdu::AWSOsduAuthProvider>())
                       : std::make_shared<osdu::AzureOsduAuthProvider>();
        provider->setBrowserOpener([this](const QUrl& url) { return browser.open(url); });
    }
    osdu::OsduAuthProviderInitParams params(const std::string& refreshToken = {}) const
    {
        return {"fast-panel", server.options().clientSecret, server.authorizeUrl(), server.tokenUrl(), "openid email",
                refreshToken, "http://127.0.0.1/signin", 0, {}};
    }
    bool signIn(OsduAuthProvider& who)
    {
        QSignalSpy authorized(&who, &OsduAuthProvider::userAuthorized);
        who.setBrowserOpener([this](const QUrl& url) { return browser.open(url); });
        who.initialize(params());
        return who.authorizeAsync(TimeoutMs) && authorized.wait(TimeoutMs);
    }
    int requestsTo(const std::string& prefix) const
    {
        int count = 0;
        for (const emulator::OsduRequest& request : server.requests())
            count += request.target.rfind(prefix, 0) == 0;
        return count;
    }

    emulator::OsduEmulator server;
    Browser browser;
    std::shared_ptr<OsduAuthProvider> provider;
};

template <typename Call>
QString failureOf(Call call)
{
    try {
        call();
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
    return {};
}

bool listening(quint16 port)
{
    QTcpSocket probe;
    probe.connectToHost(QHostAddress::LocalHost, port);
    return probe.waitForConnected(TimeoutMs);
}

} // namespace

class OsduClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void browserSignInExchangesTheCodeOnceAndStopsListening_data();
    void browserSignInExchangesTheCodeOnceAndStopsListening();
    void forgedStateIsRefusedAndTheCodeNeverExchanged();
    void everyFailureEndsInOneErrorInTheServersWords_data();
    void everyFailureEndsInOneErrorInTheServersWords();
    void storedSessionSignsInSilentlyAndRenewsOnceForThreadsAskingTogether();
    void searchAndStorageReadTheSeededDatasets();
};

void OsduClientTest::browserSignInExchangesTheCodeOnceAndStopsListening_data()
{
    QTest::addColumn<bool>("aws");
    QTest::addColumn<QString>("secret");
    QTest::newRow("Azure, secret in the form") << false << QString::fromStdString(Secret);
    QTest::newRow("AWS, secret by HTTP Basic") << true << QString::fromStdString(Secret);
    QTest::newRow("AWS, public client") << true << QString();
}

void OsduClientTest::browserSignInExchangesTheCodeOnceAndStopsListening()
{
    QFETCH(bool, aws);
    QFETCH(QString, secret);
    Platform platform(aws, secret.toStdString());
    platform.server.setRefreshTokenLifetime(std::chrono::hours(48));
    Signals outcome(*platform.provider);
    QVERIFY(!platform.provider->authorizeAsync(TimeoutMs));
    platform.provider->initialize(platform.params());
    QVERIFY(platform.provider->authorizeAsync(TimeoutMs));
    QVERIFY(!platform.provider->authorizeAsync(TimeoutMs));
    QTRY_COMPARE_WITH_TIMEOUT(outcome.authorized.count(), 1, TimeoutMs);
    platform.browser.finish();

    QCOMPARE(outcome.errors.count(), 0);
    QVERIFY(platform.browser.page.contains("Signed in. You can close this window."));
    QCOMPARE(platform.server.issuedTokens().codeExchanges, 1);
    QVERIFY(!platform.provider->refreshToken().isEmpty());
    const qint64 lifetime = QDateTime::currentDateTimeUtc().secsTo(platform.provider->refreshTokenExpiry());
    QVERIFY(qAbs(lifetime - qint64(48) * 3600) < 60);
    QCOMPARE(QString::fromStdString(platform.server.lastAuthorizeQuery()).contains("offline_access"), !aws);
    const emulator::OsduRequest exchange = platform.server.requests().back();
    QCOMPARE(exchange.authorization.rfind("Basic ", 0) == 0, aws && !secret.isEmpty());
    QCOMPARE(exchange.body.find("client_secret=") != std::string::npos, !aws && !secret.isEmpty());
    QVERIFY(!listening(platform.browser.callbackPort));
    for (const QString& hidden : {secret, platform.provider->refreshToken(), QString(platform.browser.code),
                                  QString::fromStdString(platform.provider->accessToken())})
        QVERIFY(hidden.isEmpty() || !outcome.said().contains(hidden));
}

void OsduClientTest::forgedStateIsRefusedAndTheCodeNeverExchanged()
{
    Platform platform;
    platform.browser.forgeState = true;
    Signals outcome(*platform.provider);
    platform.provider->initialize(platform.params());
    QVERIFY(platform.provider->authorizeAsync(TimeoutMs));
    QTRY_COMPARE_WITH_TIMEOUT(outcome.errors.count(), 1, TimeoutMs);
    platform.browser.finish();

    QCOMPARE(outcome.errors[0][0].toString(),
             "Sign-in was refused: the answer did not come from this sign-in (state mismatch)");
    QCOMPARE(outcome.authorized.count(), 0);
    QCOMPARE(platform.requestsTo("/oauth2/token"), 0);
    QVERIFY(platform.browser.page.startsWith("HTTP/1.1 400"));
    QVERIFY(!platform.browser.code.isEmpty() && !outcome.said().contains(platform.browser.code));
    QVERIFY(!listening(platform.browser.callbackPort));
}

void OsduClientTest::everyFailureEndsInOneErrorInTheServersWords_data()
{
    QTest::addColumn<int>("failure");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("details");
    QTest::newRow("session revoked") << 0 << "Sign-in was refused by the authorization server"
                                     << "invalid_grant: The grant was revoked (injected)";
    QTest::newRow("server down") << 1 << "The authorization server failed to complete the sign-in"
                                 << "temporarily_unavailable";
    QTest::newRow("server unreachable") << 2 << "Unable to reach the authorization server" << "onnect";
    QTest::newRow("callback port taken") << 3 << "Unable to listen for the sign-in answer on port" << "";
    QTest::newRow("no browser") << 4 << "Unable to open the web browser for sign-in" << "";
}

void OsduClientTest::everyFailureEndsInOneErrorInTheServersWords()
{
    QFETCH(int, failure);
    QFETCH(QString, message);
    QFETCH(QString, details);
    Platform platform;
    const std::string stored = "stored-session-token";
    osdu::OsduAuthProviderInitParams params = platform.params(failure < 3 ? stored : std::string());
    platform.server.setTokenFault(failure == 0 ? emulator::TokenFault::Refuse : emulator::TokenFault::Fail);
    QTcpServer squatter;
    QVERIFY(squatter.listen(QHostAddress::LocalHost));
    params.callbackPort = failure == 3 ? squatter.serverPort() : 0;
    if (failure == 2)
        platform.server.stop();
    if (failure == 4)
        platform.provider->setBrowserOpener([](const QUrl&) { return false; });
    Signals outcome(*platform.provider);
    platform.provider->initialize(params);
    QVERIFY(platform.provider->authorizeAsync(TimeoutMs));
    QTRY_COMPARE_WITH_TIMEOUT(outcome.errors.count(), 1, TimeoutMs);

    QVERIFY2(outcome.errors[0][0].toString().startsWith(message), qPrintable(outcome.errors[0][0].toString()));
    QVERIFY2(outcome.errors[0][1].toString().contains(details), qPrintable(outcome.errors[0][1].toString()));
    if (failure < 3)
        QCOMPARE(outcome.errors[0][2].toUrl(), QUrl(QString::fromStdString(platform.server.tokenUrl())));
    QCOMPARE(outcome.authorized.count(), 0);
    QCOMPARE(platform.provider->refreshToken().isEmpty(), failure != 1 && failure != 2);
    QVERIFY(!outcome.said().contains(QString::fromStdString(stored)) && !outcome.said().contains("panel-secret"));
    QVERIFY(platform.provider->authorizeAsync(TimeoutMs)); // the failed sign-in is over
}

void OsduClientTest::storedSessionSignsInSilentlyAndRenewsOnceForThreadsAskingTogether()
{
    Platform platform;
    // Inside the renewal margin from the start: every use of these tokens renews first.
    platform.server.setAccessTokenLifetime(std::chrono::seconds(30));
    QVERIFY(platform.signIn(*platform.provider));
    const std::string stored = platform.provider->refreshToken().toStdString();
    bool opened = false;
    osdu::AWSOsduAuthProvider later;
    later.setBrowserOpener([&opened](const QUrl&) {
        opened = true;
        return false;
    });
    later.initialize(platform.params(stored));
    Signals outcome(later);
    QVERIFY(later.authorizeAsync(TimeoutMs));
    QTRY_COMPARE_WITH_TIMEOUT(outcome.authorized.count(), 1, TimeoutMs);
    QVERIFY(!opened && !later.refreshToken().isEmpty() && later.refreshToken().toStdString() != stored);
    QVERIFY(!outcome.said().contains(QString::fromStdString(stored)));

    // The emulator spends a refresh token at its first use: a second renewal would be refused.
    platform.server.setAccessTokenLifetime(std::chrono::hours(1));
    std::vector<std::future<std::string>> asked;
    asked.reserve(4);
    for (int i = 0; i < 4; ++i)
        asked.push_back(std::async(std::launch::async, [&later] { return later.accessToken(); }));
    std::set<std::string> tokens;
    for (auto& token : asked)
        tokens.insert(token.get());
    QCOMPARE(tokens.size(), std::size_t(1));
    QCOMPARE(platform.server.issuedTokens().refreshGrants, 2);
    QCOMPARE(later.accessToken(), *tokens.begin());

    // The first provider's refresh token was spent by the second: it is signed out.
    QCOMPARE(failureOf([&] { platform.provider->accessToken(); }),
             "Unable to renew the OSDU access token: invalid_grant: Unknown or already used refresh token");
    QCOMPARE(failureOf([&] { platform.provider->accessToken(); }), "Not signed in to the OSDU platform");
}

void OsduClientTest::searchAndStorageReadTheSeededDatasets()
{
    Platform platform;
    platform.server.seedDatasets(150);
    platform.server.addRecord("opendes:master-data--Well:1", "osdu:wks:master-data--Well:1.0.0", R"({"Name":"W1"})");
    QVERIFY(platform.signIn(*platform.provider));
    auto client = std::make_shared<osdu::OsduHttpClient>(platform.server.baseUrl() + "/", platform.provider);
    auto factory = osdu::createStorageRecordFactory();
    factory->registerKind("*:dataset--FileCollection.*:1.*", &osdu::deserialiseFileCollection);
    const auto search = osdu::createSearch(client);
    const auto storage = osdu::createStorage(client, factory);

    const std::vector<osdu::SearchHit> hits = search->query({"osdu:wks:*:*", 1000, 0, "Volume"}, "opendes");
    QCOMPARE(hits.size(), std::size_t(151));
    QCOMPARE(search->query({"osdu:wks:*:*", 10, 148, {}}, "opendes").size(), std::size_t(3));
    std::vector<std::string> ids;
    ids.reserve(hits.size());
    for (const osdu::SearchHit& hit : hits)
        ids.push_back(hit.id);
    platform.server.clearRequests();
    const osdu::StorageRecordCollection records = storage->getRecords("opendes", ids);
    QCOMPARE(records.size(), std::size_t(151));
    QCOMPARE(platform.requestsTo("/api/storage/v2/query/records"), 2);
    for (const emulator::OsduRequest& request : platform.server.requests())
        QVERIFY(request.authorization == "Bearer " + platform.provider->accessToken()
                && request.dataPartitionId == "opendes");
    const auto* first = dynamic_cast<const osdu::FileCollection*>(records.front().get());
    QVERIFY(first && first->getId() == platform.server.seededDatasetId(1) && first->getName() == "Volume 0001");
    QCOMPARE(first->getDatasetProperties().getFileSource(), std::string("s3://fast-demo-bucket/volumes/vol-0001/"));
    QCOMPARE(first->getDatasetProperties().fileSources, std::vector<std::string>{"vol-0001.vds"});
    QVERIFY(!dynamic_cast<const osdu::FileCollection*>(records.back().get()));
    QCOMPARE(records.back()->getId(), std::string("opendes:master-data--Well:1"));

    QCOMPARE(storage->getRecords("opendes", {ids[1]}).front()->getId(), ids[1]);
    QVERIFY(storage->getRecords("opendes", {"opendes:dataset--FileCollection.Bluware.OpenVDS:none"}).empty());
    platform.server.failRecordFetch(ids[2]);
    const QString unreadable = failureOf([&] { storage->getRecords("opendes", {ids[3], ids[2]}); });
    QVERIFY2(unreadable.startsWith(QString::fromStdString("Unable to fetch record " + ids[2] + ": status 500")),
             qPrintable(unreadable));
    platform.server.rejectDataRequests(1); // a token cut short: renewed once, then served
    QCOMPARE(search->query({"osdu:wks:*:*", 5, 0, {}}, "opendes").size(), std::size_t(5));
    QCOMPARE(platform.server.issuedTokens().refreshGrants, 1);
    QCOMPARE(failureOf([&] { search->query({"osdu:wks:*:*", 5, 0, {}}, "elsewhere"); }),
             "Search failed with status 403: No access to the data partition elsewhere");
}

QTEST_MAIN(OsduClientTest)
#include "tst_osduclient.moc"
