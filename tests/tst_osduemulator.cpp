// The OSDU emulator's own checks over real HTTP, those that no client test sees because our client
// never breaks these rules: PKCE, client authentication, access checks and search bounds. What a
// client does see (storage, paging, faults, renewals): tst_osduclient, tst_faults_osdu.

#include <OsduEmulator.h>

#include <QtTest>

#include <curl/curl.h>

Q_DECLARE_METATYPE(std::string)

using emulator::OsduEmulator;

namespace {

// RFC 7636, appendix B.
const std::string kVerifier = "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk";
const std::string kChallenge = "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM";
const std::string kCallback = "http%3A%2F%2F127.0.0.1%2Fcallback"; // nothing listens: the redirect is read

struct Answer
{
    long status = 0;
    QByteArray body;
    QUrl location;
    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
};

std::size_t appendTo(char* data, std::size_t size, std::size_t count, void* target)
{
    static_cast<QByteArray*>(target)->append(data, static_cast<int>(size * count));
    return size * count;
}

Answer send(const std::string& url, const std::vector<std::string>& headers = {}, const char* body = nullptr)
{
    CURL* curl = curl_easy_init();
    curl_slist* list = nullptr;
    for (const std::string& header : headers)
        list = curl_slist_append(list, header.c_str());
    Answer answer;
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, list);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &appendTo);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &answer.body);
    if (body)
        curl_easy_setopt(curl, CURLOPT_COPYPOSTFIELDS, body);
    char* location = nullptr;
    if (curl_easy_perform(curl) == CURLE_OK) {
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &answer.status);
        curl_easy_getinfo(curl, CURLINFO_REDIRECT_URL, &location);
        answer.location = QUrl(QString::fromUtf8(location ? location : ""));
    }
    curl_slist_free_all(list);
    curl_easy_cleanup(curl);
    return answer;
}

std::string basic(const std::string& secret)
{
    return "Authorization: Basic " + QByteArray::fromStdString("fast-panel:" + secret).toBase64().toStdString();
}

Answer authorize(const OsduEmulator& osdu, const std::string& redirect = kCallback)
{
    return send(osdu.authorizeUrl() + "?response_type=code&client_id=fast-panel&state=s&code_challenge=" + kChallenge
                + "&code_challenge_method=S256&redirect_uri=" + redirect);
}

Answer exchange(const OsduEmulator& osdu, const QString& code, const std::string& verifier = kVerifier,
                const std::string& header = basic("fast-panel-secret"), const std::string& form = {})
{
    const std::string body = "grant_type=authorization_code&code=" + code.toStdString() + "&code_verifier=" + verifier
                             + "&redirect_uri=" + kCallback + form;
    return send(osdu.tokenUrl(), {header}, body.c_str());
}

QString codeOf(const Answer& authorized)
{
    return QUrlQuery(authorized.location).queryItemValue("code");
}

Answer search(const OsduEmulator& osdu, const std::string& token, const std::string& body,
              const std::string& partition = "opendes")
{
    return send(osdu.baseUrl() + "/api/search/v2/query",
                {"Authorization: Bearer " + token, "data-partition-id: " + partition, "Content-Type: application/json"},
                body.c_str());
}

} // namespace

class OsduEmulatorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void codeExchangeChecksVerifierAndClientAndSpendsTheCode_data();
    void codeExchangeChecksVerifierAndClientAndSpendsTheCode();
    void searchNeedsAFreshBearerAndThePartitionAndBoundsThePage();
};

void OsduEmulatorTest::codeExchangeChecksVerifierAndClientAndSpendsTheCode_data()
{
    QTest::addColumn<std::string>("verifier");
    QTest::addColumn<std::string>("header");
    QTest::addColumn<std::string>("form");
    QTest::addColumn<QString>("error");
    const std::string none;
    QTest::newRow("basic") << kVerifier << basic("fast-panel-secret") << none << QString();
    QTest::newRow("wrong verifier") << std::string(43, 'x') << basic("fast-panel-secret") << none << "invalid_grant";
    QTest::newRow("basic, wrong secret") << kVerifier << basic("guess") << none << "invalid_client";
    QTest::newRow("form, wrong secret") << kVerifier << none << std::string("&client_id=fast-panel&client_secret=guess")
                                        << "invalid_client";
}

void OsduEmulatorTest::codeExchangeChecksVerifierAndClientAndSpendsTheCode()
{
    QFETCH(std::string, verifier);
    QFETCH(std::string, header);
    QFETCH(std::string, form);
    QFETCH(QString, error);
    OsduEmulator osdu;
    osdu.start();
    const QString code = codeOf(authorize(osdu));
    const Answer answer = exchange(osdu, code, verifier, header, form);
    QCOMPARE(answer.json()["error"].toString(), error);
    QCOMPARE(answer.status, error.isEmpty() ? 200L : error == "invalid_client" ? 401L : 400L);
    // Spent by an authenticated client, whether its exchange succeeded or not.
    QCOMPARE(exchange(osdu, code).status, error == "invalid_client" ? 200L : 400L);
    // Never redirect to a host other than the loopback one.
    const Answer remote = authorize(osdu, "http%3A%2F%2Fexample.com%2Fcallback");
    QVERIFY(remote.status == 400 && remote.location.isEmpty());
}

void OsduEmulatorTest::searchNeedsAFreshBearerAndThePartitionAndBoundsThePage()
{
    OsduEmulator osdu;
    osdu.seedDatasets(1200);
    // Long enough for the checks below, short enough not to hold the suite up.
    osdu.setAccessTokenLifetime(std::chrono::milliseconds(1500));
    osdu.start();
    const std::string token = exchange(osdu, codeOf(authorize(osdu))).json()["access_token"].toString().toStdString();
    const std::string kind = R"({"kind":"osdu:wks:dataset--FileCollection.Bluware.*:1.0.0")";
    const QJsonObject page = search(osdu, token, kind + R"(,"limit":1000,"offset":100})").json();
    QCOMPARE(page["totalCount"].toInt(), 1200);
    QCOMPARE(page["results"].toArray().first()["id"].toString(),
             "opendes:dataset--FileCollection.Bluware.OpenVDS:vol-0101");
    QCOMPARE(search(osdu, token, R"({"kind":"osdu:wks:dataset--*:2.0.0"})").json()["totalCount"].toInt(), 0);
    for (const std::string& tooMuch : {kind + R"(,"limit":1001})", kind + R"(,"limit":1000,"offset":9001})",
                                       std::string(R"({"kind":"FileCollection"})")})
        QVERIFY2(search(osdu, token, tooMuch).status == 400, tooMuch.c_str());
    QCOMPARE(search(osdu, "forged", kind + "}").status, 401L);
    QCOMPARE(search(osdu, token, kind + "}", "").status, 400L);
    QTRY_COMPARE(search(osdu, token, kind + "}").status, 401L);
}

QTEST_GUILESS_MAIN(OsduEmulatorTest)
#include "tst_osduemulator.moc"
