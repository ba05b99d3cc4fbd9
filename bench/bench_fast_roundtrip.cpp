// Fast::getVdsList against the emulator, against a bare libcurl GET of the same URL.

#include "BenchSettings.h"
#include "RatioReporter.h"

#include <FastEmulator.h>

#include <fast/client/Fast.h>
#include <osdu/HttpResponse.h>

#include <curl/curl.h>

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <memory>

namespace {

// The emulator with a listing of a realistic size (a few dozen volumes) and a client for it.
struct Service
{
    Service()
    {
        emulator::EmulatorOptions options;
        options.driveDir = (folder.path() + "/drive").toStdString();
        emulator = std::make_unique<emulator::FastEmulator>(options);
        emulator->start();
        for (int v = 0; v < 40; ++v)
            emulator->service().handle("POST", "/api/v2/vds/",
                                       "{ \"url\": \"/data/survey-" + std::to_string(v) + ".vds\" }");
        QSettings().setValue("FAST/FAST_PORT", QString::number(emulator->port()));
        client = std::make_unique<fast::Fast>("127.0.0.1");
    }

    QTemporaryDir folder;
    std::unique_ptr<emulator::FastEmulator> emulator;
    std::unique_ptr<fast::Fast> client;
};

Service& service()
{
    static Service instance;
    return instance;
}

std::size_t collect(char* data, std::size_t size, std::size_t count, void* target)
{
    static_cast<std::string*>(target)->append(data, size * count);
    return size * count;
}

void fastGetVdsList(benchmark::State& state)
{
    const fast::Fast& client = *service().client;
    for (auto _ : state) {
        const auto response = client.getVdsList();
        if (response->getResponse() != 200)
            state.SkipWithError("the emulator did not answer");
    }
}

// What any program would do for the same answer: a fresh handle, one GET, the body in a string.
void bareCurlGet(benchmark::State& state)
{
    const std::string url = service().client->baseUrl() + "/api/v2/vds/";
    for (auto _ : state) {
        std::string body;
        CURL* curl = curl_easy_init();
        curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
        curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &collect);
        curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
        const CURLcode result = curl_easy_perform(curl);
        long status = 0;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        curl_easy_cleanup(curl);
        if (result != CURLE_OK || status != 200)
            state.SkipWithError("the emulator did not answer");
    }
}

} // namespace

BENCHMARK(fastGetVdsList)->Unit(benchmark::kMicrosecond)->MinTime(2.0);
BENCHMARK(bareCurlGet)->Unit(benchmark::kMicrosecond)->MinTime(2.0);

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir settings;
    useScratchSettings(settings.path());
    curl_global_init(CURL_GLOBAL_DEFAULT);
    return runWithRatios(argc, argv, {{"Fast::getVdsList / bare libcurl GET", "fastGetVdsList", "bareCurlGet", 1.2}});
}
