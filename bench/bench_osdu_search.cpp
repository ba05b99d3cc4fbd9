// A file-collection search with 1,000 hits against the OSDU emulator, against the floor: the
// same query and 1,000 record GETs over one kept-alive connection with bare libcurl.

#include "BenchSettings.h"
#include "RatioReporter.h"

#include <Http2Front.h>
#include <OsduEmulator.h>

#include <fast/osdu/FileCollectionSearch.h>

#include <osdu/AWSOsduAuthProvider.h>
#include <osdu/OsduHttpClient.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QUrl>

#include <curl/curl.h>

#include <memory>

namespace {

constexpr int kDatasets = 1000;

std::size_t collect(char* data, std::size_t size, std::size_t count, void* target)
{
    static_cast<std::string*>(target)->append(data, size * count);
    return size * count;
}

// The person's browser: follows the sign-in redirects back to the loopback listener.
bool followInBrowser(const QUrl& url)
{
    QThread* browser = QThread::create([address = url.toEncoded()] {
        std::string page;
        CURL* curl = curl_easy_init();
        curl_easy_setopt(curl, CURLOPT_URL, address.constData());
        curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
        curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &collect);
        curl_easy_setopt(curl, CURLOPT_WRITEDATA, &page);
        curl_easy_perform(curl);
        curl_easy_cleanup(curl);
    });
    QObject::connect(browser, &QThread::finished, browser, &QObject::deleteLater);
    browser->start();
    return true;
}

struct Platform
{
    Platform()
    {
        emulator = std::make_unique<emulator::OsduEmulator>();
        emulator->seedDatasets(kDatasets);
        emulator->start();
        QSettings().setValue("AWS/OSDU_DATA_PARTITION_ID", "opendes");

        auto provider = std::make_shared<osdu::AWSOsduAuthProvider>(nullptr);
        osdu::OsduAuthProviderInitParams params;
        params.clientId = emulator->options().clientId;
        params.clientSecret = emulator->options().clientSecret;
        params.oauthUrl = emulator->authorizeUrl();
        params.oauthTokenUrl = emulator->tokenUrl();
        params.scope = "openid email";
        params.callbackUrl = "http://localhost";
        params.callbackPort = 0;
        provider->initialize(params);
        provider->setBrowserOpener(&followInBrowser);
        QEventLoop signedIn;
        QObject::connect(provider.get(), &osdu::OsduAuthProvider::userAuthorized, &signedIn, &QEventLoop::quit);
        QObject::connect(provider.get(), &osdu::OsduAuthProvider::error, &signedIn, [&signedIn] { signedIn.exit(1); });
        QTimer::singleShot(30000, &signedIn, [&signedIn] { signedIn.exit(2); });
        provider->authorizeAsync(10000);
        if (signedIn.exec() != 0)
            qFatal("the benchmark could not sign in to the OSDU emulator");
        client = std::make_shared<osdu::OsduHttpClient>(emulator->baseUrl(), provider, nullptr);
        search = fast::createFileCollectionSearch(client);
        front = std::make_unique<emulator::Http2Front>(emulator->port());
        if (!front->start())
            qFatal("the benchmark could not put an HTTP/2 front before the emulator: %s", front->failure().c_str());
        qputenv("CURL_CA_BUNDLE", QByteArray::fromStdString(front->certificateFile()));
        http2Search = fast::createFileCollectionSearch(
            std::make_shared<osdu::OsduHttpClient>(front->baseUrl(), provider, nullptr));
        token = provider->accessToken();
        auth = provider;
    }

    std::unique_ptr<emulator::OsduEmulator> emulator;
    std::shared_ptr<osdu::OsduAuthProvider> auth;
    std::shared_ptr<osdu::OsduHttpClient> client;
    std::shared_ptr<fast::FileCollectionSearch> search;
    std::unique_ptr<emulator::Http2Front> front;
    std::shared_ptr<fast::FileCollectionSearch> http2Search;
    std::string token;
};

Platform& platform()
{
    static Platform instance;
    return instance;
}

void fileCollectionSearch(benchmark::State& state)
{
    Platform& p = platform();
    std::size_t found = 0;
    for (auto _ : state)
        p.search->performSearch("AWS", "", [&found](const std::shared_ptr<osdu::StorageRecordCollection>& results) {
            found = results->size();
        });
    if (found != kDatasets)
        state.SkipWithError("the search did not find every dataset");
}

// With 20 ms added to every request, as to a platform in another region: the search as it runs,
// against the same search fetching one record at a time.
void searchWithLatency(benchmark::State& state, const char* concurrency, int throttleEvery = 0, bool http2 = false)
{
    Platform& p = platform();
    QSettings().setValue("AWS/OSDU_FETCH_CONCURRENCY", concurrency);
    p.emulator->setLatency(20);
    emulator::Throttling throttling;
    throttling.every = throttleEvery;
    p.emulator->setThrottling(throttling);
    std::size_t found = 0;
    for (auto _ : state)
        (http2 ? p.http2Search : p.search)
            ->performSearch("AWS", "", [&found](const std::shared_ptr<osdu::StorageRecordCollection>& results) {
                found = results->size();
            });
    p.emulator->setLatency(0);
    p.emulator->clearFaults();
    QSettings().remove("AWS/OSDU_FETCH_CONCURRENCY");
    // A busy platform may keep a few datasets from being read within four attempts each; the
    // search reports them, and so does this.
    state.counters["unread"] = static_cast<double>(kDatasets - found);
    if (found != kDatasets && throttleEvery == 0)
        state.SkipWithError("the search did not find every dataset");
}

void distantSearch(benchmark::State& state)
{
    searchWithLatency(state, "16");
}

// The same platform answering every third request 429 with Retry-After: 0.
void distantBusySearch(benchmark::State& state)
{
    searchWithLatency(state, "16", 3);
}

void distantSearchHttp2(benchmark::State& state)
{
    searchWithLatency(state, "16", 0, true);
}

void distantBusySearchHttp2(benchmark::State& state)
{
    searchWithLatency(state, "16", 3, true);
}

void distantSearchOneAtATime(benchmark::State& state)
{
    searchWithLatency(state, "1");
}

// The same conversation with nothing on top: one query, then one GET per hit, one connection.
void bareCurlFloor(benchmark::State& state)
{
    Platform& p = platform();
    const std::string base = p.emulator->baseUrl();
    curl_slist* headers = nullptr;
    headers = curl_slist_append(headers, ("Authorization: Bearer " + p.token).c_str());
    headers = curl_slist_append(headers, "data-partition-id: opendes");
    headers = curl_slist_append(headers, "Content-Type: application/json");
    CURL* curl = curl_easy_init();
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &collect);
    for (auto _ : state) {
        std::string body;
        curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
        curl_easy_setopt(curl, CURLOPT_URL, (base + "/api/search/v2/query").c_str());
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS,
                         "{\"kind\":\"osdu:wks:dataset--FileCollection.Bluware.*:1.0.0\",\"limit\":1000}");
        curl_easy_perform(curl);
        curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
        for (int n = 1; n <= kDatasets; ++n) {
            std::string record;
            curl_easy_setopt(curl, CURLOPT_WRITEDATA, &record);
            char* id = curl_easy_escape(curl, p.emulator->seededDatasetId(n).c_str(), 0);
            curl_easy_setopt(curl, CURLOPT_URL, (base + "/api/storage/v2/records/" + id).c_str());
            curl_free(id);
            curl_easy_perform(curl);
        }
    }
    curl_easy_cleanup(curl);
    curl_slist_free_all(headers);
}

} // namespace

BENCHMARK(fileCollectionSearch)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(bareCurlFloor)->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK(distantSearch)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(distantBusySearch)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(distantSearchHttp2)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(distantBusySearchHttp2)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(distantSearchOneAtATime)->Unit(benchmark::kMillisecond)->Iterations(1);

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir settings;
    useScratchSettings(settings.path());
    curl_global_init(CURL_GLOBAL_DEFAULT);
    return runWithRatios(argc, argv,
                         {{"file-collection search / bare libcurl floor, 1,000 hits", "fileCollectionSearch",
                           "bareCurlFloor", 1.0},
                          // 1.5 s against about 20 s
                          {"search with 20 ms latency / one fetch at a time", "distantSearch",
                           "distantSearchOneAtATime", 0.075},
                          {"search, 20 ms latency, HTTP/1.1 (s)", "distantSearch", "", 1.5},
                          {"search, 20 ms, HTTP/1.1, every third 429 (s)", "distantBusySearch", "", 1.5, "unread"},
                          {"search, 20 ms latency, HTTP/2 (s)", "distantSearchHttp2", "", 0.5},
                          {"search, 20 ms, HTTP/2, every third 429 (s)", "distantBusySearchHttp2", "", 1.5, "unread"}});
}
