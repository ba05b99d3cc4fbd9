// The OSDU emulator's own checks over real HTTP, those that the client's tests cannot see from
// the client's side: PKCE, client authentication, access checks, search paging and kinds, storage
// fetches. Token rotation, lapsed sessions and the injected faults: tst_osduclient, tst_faults_osdu.

#include <OsduEmulator.h>

#include <QtTest>

#include <curl/curl.h>

Q_DECLARE_METATYPE(std::string)

using emulator::OsduEmulator;

namespace {

// RFC 7636, appendix B.
const std::string kVerifier = "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk";
const std::string kChallenge = "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM";
const std::string kCallback = "http://127.0.0.1/callback"; // nothing listens: the redirect is read, not followed
const std::string kFileCollections = "osdu:wks:dataset--FileCollection.Bluware.*:1.0.0";
const char* const kEveryKind = R"({"kind":"*:*:*:*"})";

struct Answer
{
    long status = 0;
    QByteArray body;
    QUrl location;
    long newConnections = 0;
    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
};

std::size_t appendTo(char* data, std::size_t size, std::size_t count, void* target)
{
    static_cast<QByteArray*>(target)->append(data, static_cast<int>(size * count));
    return size * count;
}

// One handle for all requests, so that libcurl keeps the connection alive between them.
class Http
{
public:
    Http() : m_curl(curl_easy_init()) {}
    ~Http() { curl_easy_cleanup(m_curl); }

    Answer send(const std::string& url, const std::vector<std::string>& headers = {}, const char* body = nullptr)
    {
        curl_slist* list = nullptr;
        for (const std::string& header : headers)
            list = curl_slist_append(list, header.c_str());
        Answer answer;
        curl_easy_setopt(m_curl, CURLOPT_URL, url.c_str());
        curl_easy_setopt(m_curl, CURLOPT_HTTPHEADER, list);
        curl_easy_setopt(m_curl, CURLOPT_WRITEFUNCTION, &appendTo);
        curl_easy_setopt(m_curl, CURLOPT_WRITEDATA, &answer.body);
        if (body)
            curl_easy_setopt(m_curl, CURLOPT_COPYPOSTFIELDS, body);
        else
            curl_easy_setopt(m_curl, CURLOPT_HTTPGET, 1L);
        if (curl_easy_perform(m_curl) == CURLE_OK) {
            char* location = nullptr;
            curl_easy_getinfo(m_curl, CURLINFO_RESPONSE_CODE, &answer.status);
            curl_easy_getinfo(m_curl, CURLINFO_REDIRECT_URL, &location);
            curl_easy_getinfo(m_curl, CURLINFO_NUM_CONNECTS, &answer.newConnections);
            answer.location = QUrl(QString::fromUtf8(location ? location : ""));
        }
        curl_slist_free_all(list);
        return answer;
    }

private:
    CURL* m_curl;
};

std::string encoded(const std::string& text)
{
    return QUrl::toPercentEncoding(QString::fromStdString(text)).toStdString();
}

QString queryItem(const QUrl& url, const QString& name)
{
    return QUrlQuery(url).queryItemValue(name, QUrl::FullyDecoded);
}

Answer authorize(Http& http, const OsduEmulator& osdu, const std::string& redirect = kCallback)
{
    return http.send(osdu.authorizeUrl() + "?response_type=code&client_id=fast-panel&scope=openid%20offline_access"
                     + "&state=" + encoded("s+1/&") + "&code_challenge=" + kChallenge
                     + "&code_challenge_method=S256&redirect_uri=" + encoded(redirect));
}

std::string basic(const std::string& secret)
{
    return "Authorization: Basic " + QByteArray::fromStdString("fast-panel:" + secret).toBase64().toStdString();
}

Answer exchange(Http& http, const OsduEmulator& osdu, const QString& code, const std::string& verifier = kVerifier,
                const std::string& auth = basic("fast-panel-secret"), const std::string& extra = {})
{
    const std::string form = "grant_type=authorization_code&code=" + code.toStdString() + "&code_verifier=" + verifier
                             + "&redirect_uri=" + encoded(kCallback) + extra;
    return http.send(osdu.tokenUrl(), {auth}, form.c_str());
}

std::string signIn(Http& http, const OsduEmulator& osdu)
{
    return exchange(http, osdu, queryItem(authorize(http, osdu).location, "code"))
        .json()["access_token"]
        .toString()
        .toStdString();
}

std::vector<std::string> dataHeaders(const std::string& token, const std::string& partition = "opendes")
{
    return {"Authorization: Bearer " + token, "data-partition-id: " + partition, "Content-Type: application/json"};
}

Answer search(Http& http, const OsduEmulator& osdu, const std::string& token, const std::string& body)
{
    return http.send(osdu.baseUrl() + "/api/search/v2/query", dataHeaders(token), body.c_str());
}

} // namespace

class OsduEmulatorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void codeExchangeChecksVerifierAndClientAndSpendsTheCode_data();
    void codeExchangeChecksVerifierAndClientAndSpendsTheCode();
    void dataRequestsNeedAFreshBearerAndThePartition();
    void searchMatchesKindWildcardsAndBoundsThePageOnOneConnection();
    void storageFetchesRecordsAndReportsInjectedFailures();
};

void OsduEmulatorTest::codeExchangeChecksVerifierAndClientAndSpendsTheCode_data()
{
    QTest::addColumn<std::string>("verifier");
    QTest::addColumn<std::string>("header");
    QTest::addColumn<std::string>("form");
    QTest::addColumn<QString>("error");
    const std::string none;
    QTest::newRow("basic") << kVerifier << basic("fast-panel-secret") << none << QString();
    QTest::newRow("form") << kVerifier << none << std::string("&client_id=fast-panel&client_secret=fast-panel-secret")
                          << QString();
    QTest::newRow("wrong verifier") << std::string(43, 'x') << basic("fast-panel-secret") << none << "invalid_grant";
    QTest::newRow("basic, wrong secret") << kVerifier << basic("guess") << none << "invalid_client";
    QTest::newRow("form, wrong secret") << kVerifier << none << std::string("&client_id=fast-panel&client_secret=guess")
                                        << "invalid_client";
    QTest::newRow("form, no secret") << kVerifier << none << std::string("&client_id=fast-panel") << "invalid_client";
}

void OsduEmulatorTest::codeExchangeChecksVerifierAndClientAndSpendsTheCode()
{
    QFETCH(std::string, verifier);
    QFETCH(std::string, header);
    QFETCH(std::string, form);
    QFETCH(QString, error);
    OsduEmulator osdu;
    osdu.start();
    Http http;
    const QString code = queryItem(authorize(http, osdu).location, "code");
    const Answer answer = exchange(http, osdu, code, verifier, header, form);
    QCOMPARE(answer.json()["error"].toString(), error);
    QCOMPARE(answer.status, error.isEmpty() ? 200L : error == "invalid_client" ? 401L : 400L);
    // Spent by an authenticated client, whether its exchange succeeded or not.
    if (error != "invalid_client")
        QCOMPARE(exchange(http, osdu, code).json()["error"].toString(), "invalid_grant");
    QCOMPARE(osdu.issuedTokens().codeExchanges, error.isEmpty() ? 1 : 0);
    // Never redirect to a host other than the loopback one.
    const Answer remote = authorize(http, osdu, "http://example.com/callback");
    QVERIFY(remote.status == 400 && remote.location.isEmpty());
}

void OsduEmulatorTest::dataRequestsNeedAFreshBearerAndThePartition()
{
    OsduEmulator osdu;
    // Long enough for the three checks below, short enough not to hold the suite up.
    osdu.setAccessTokenLifetime(std::chrono::milliseconds(500));
    osdu.start();
    Http http;
    const std::string token = signIn(http, osdu);
    const auto status = [&](const std::string& bearer, const std::string& partition) {
        return http.send(osdu.baseUrl() + "/api/search/v2/query", dataHeaders(bearer, partition), kEveryKind).status;
    };
    QCOMPARE(status(token, "opendes"), 200L);
    QCOMPARE(status("forged", "opendes"), 401L);
    QCOMPARE(status(token, ""), 400L);
    QTRY_COMPARE(status(token, "opendes"), 401L);
}

void OsduEmulatorTest::searchMatchesKindWildcardsAndBoundsThePageOnOneConnection()
{
    OsduEmulator osdu;
    osdu.seedDatasets(1200);
    osdu.addRecord("opendes:work-product-component--SeismicTraceData:t1",
                   "osdu:wks:work-product-component--SeismicTraceData:1.0.0", "{}");
    osdu.start();
    Http http;
    const std::string token = signIn(http, osdu);
    const Answer page = search(http, osdu, token,
                               R"({"kind":")" + kFileCollections + R"(","limit":1000,"offset":100})");
    const QJsonArray results = page.json()["results"].toArray();
    QCOMPARE(page.json()["totalCount"].toInt(), 1200);
    QCOMPARE(results.size(), 1000);
    QCOMPARE(results.first()["id"].toString(), "opendes:dataset--FileCollection.Bluware.OpenVDS:vol-0101");
    QCOMPARE(page.newConnections, 0L);
    QCOMPARE(search(http, osdu, token, R"({"kind":"*:*:*:*","limit":1})").json()["totalCount"].toInt(), 1201);
    QCOMPARE(search(http, osdu, token, R"({"kind":"osdu:wks:dataset--*:2.0.0"})").json()["totalCount"].toInt(), 0);

    QCOMPARE(search(http, osdu, token, R"({"kind":")" + kFileCollections + R"(","limit":1001})").status, 400L);
    QCOMPARE(search(http, osdu, token, R"({"kind":")" + kFileCollections + R"(","limit":1000,"offset":9001})").status,
             400L);
    QCOMPARE(search(http, osdu, token, R"({"kind":"FileCollection"})").status, 400L);
}

void OsduEmulatorTest::storageFetchesRecordsAndReportsInjectedFailures()
{
    OsduEmulator osdu;
    osdu.seedDatasets(3, "s3://bucket/v/");
    osdu.start();
    Http http;
    const std::string token = signIn(http, osdu);
    const std::string records = osdu.baseUrl() + "/api/storage/v2/records/";
    const QJsonObject record = http.send(records + encoded(osdu.seededDatasetId(2)), dataHeaders(token)).json();
    QCOMPARE(record["data"]["Name"].toString(), "Volume 0002");
    QCOMPARE(record["data"]["DatasetProperties"]["FileCollectionPath"].toString(), "s3://bucket/v/vol-0002/");
    QCOMPARE(http.send(records + "opendes%3Anope", dataHeaders(token)).status, 404L);
    osdu.failRecordFetch(osdu.seededDatasetId(3));
    QCOMPARE(http.send(records + encoded(osdu.seededDatasetId(3)), dataHeaders(token)).status, 500L);

    const std::string batch = R"({"records":[")" + osdu.seededDatasetId(1) + R"(","opendes:nope",")"
                              + osdu.seededDatasetId(3) + R"("]})";
    const QJsonObject found =
        http.send(osdu.baseUrl() + "/api/storage/v2/query/records", dataHeaders(token), batch.c_str()).json();
    QCOMPARE(found["records"].toArray().size(), 1);
    QCOMPARE(found["invalidRecords"].toArray(), QJsonArray{"opendes:nope"});
    QCOMPARE(found["retryRecords"].toArray().size(), 1);
    const std::string tooMany = R"({"records":[)" + QByteArray("\"x\",").repeated(100).toStdString() + R"("y"]})";
    QCOMPARE(http.send(osdu.baseUrl() + "/api/storage/v2/query/records", dataHeaders(token), tooMany.c_str()).status,
             400L);
}

QTEST_GUILESS_MAIN(OsduEmulatorTest)
#include "tst_osduemulator.moc"
