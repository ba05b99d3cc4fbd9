// The OSDU emulator's own checks over real HTTP, those that no client test can see because our
// client never breaks these rules: codes spent once, redirects to loopback only, fresh bearers. A
// wrong verifier or secret, the search's bounds: tst_osduclient.

#include <OsduEmulator.h>

#include <QtTest>

#include <curl/curl.h>

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

Answer authorize(const OsduEmulator& osdu, const std::string& redirect = kCallback)
{
    return send(osdu.authorizeUrl() + "?response_type=code&client_id=fast-panel&state=s&code_challenge=" + kChallenge
                + "&code_challenge_method=S256&redirect_uri=" + redirect);
}

Answer exchange(const OsduEmulator& osdu, const QString& code, const std::string& secret = "fast-panel-secret")
{
    const std::string body = "grant_type=authorization_code&code=" + code.toStdString() + "&code_verifier=" + kVerifier
                             + "&redirect_uri=" + kCallback;
    return send(osdu.tokenUrl(),
                {"Authorization: Basic " + QByteArray::fromStdString("fast-panel:" + secret).toBase64().toStdString()},
                body.c_str());
}

QString authorizationCode(const OsduEmulator& osdu)
{
    return QUrlQuery(authorize(osdu).location).queryItemValue("code");
}

} // namespace

class OsduEmulatorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCodeIsSpentOnceByItsClientAndNeverSentOffLoopback();
    void dataRequestsNeedAFreshBearer();
};

void OsduEmulatorTest::aCodeIsSpentOnceByItsClientAndNeverSentOffLoopback()
{
    OsduEmulator osdu;
    osdu.start();
    const QString code = authorizationCode(osdu);
    QCOMPARE(exchange(osdu, code, "guess").status, 401L);
    QCOMPARE(exchange(osdu, code).status, 200L);
    QCOMPARE(exchange(osdu, code).json()["error"].toString(), "invalid_grant");
    const Answer remote = authorize(osdu, "http%3A%2F%2Fexample.com%2Fcallback");
    QVERIFY(remote.status == 400 && remote.location.isEmpty());
}

void OsduEmulatorTest::dataRequestsNeedAFreshBearer()
{
    OsduEmulator osdu;
    // Long enough for the checks below, short enough not to hold the suite up.
    osdu.setAccessTokenLifetime(std::chrono::milliseconds(1000));
    osdu.start();
    const std::string token = exchange(osdu, authorizationCode(osdu)).json()["access_token"].toString().toStdString();
    const auto status = [&osdu](const std::string& bearer) {
        return send(osdu.baseUrl() + "/api/search/v2/query",
                    {"Authorization: Bearer " + bearer, "data-partition-id: opendes", "Content-Type: application/json"},
                    R"({"kind":"*:*:*:*"})")
            .status;
    };
    QCOMPARE(status("forged"), 401L);
    QCOMPARE(status(token), 200L);
    QTRY_COMPARE(status(token), 401L);
}

QTEST_GUILESS_MAIN(OsduEmulatorTest)
#include "tst_osduemulator.moc"
