// parseVdsInfos against POCO parsing the same two listings and doing nothing else.

#include "RatioReporter.h"

#include <fast/client/VdsDescriptorParser.h>

#include <Poco/JSON/Parser.h>

#include <random>
#include <string>

namespace {

struct Listings
{
    std::string volumes;
    std::string files;
};

// FAST's listings as it writes them: ids of 32 hex digits, files spread over the volumes.
Listings makeListings(int volumeCount, int fileCount)
{
    std::mt19937 random(42);
    const auto id = [&random](const char* prefix, int n) {
        char text[64];
        std::snprintf(text, sizeof text, "%s%08x%024x", prefix, static_cast<unsigned>(n),
                      static_cast<unsigned>(random()));
        return std::string(text, 32);
    };
    std::vector<std::string> vdsIds;
    Listings listings;
    listings.volumes = "[";
    for (int v = 0; v < volumeCount; ++v) {
        vdsIds.push_back(id("v", v));
        listings.volumes += (v ? ",{\"id\":\"" : "{\"id\":\"") + vdsIds.back()
                            + "\",\"url\":\"s3://bucket/surveys/survey-" + std::to_string(v) + ".vds\"}";
    }
    listings.volumes += "]";
    listings.files = "[";
    std::uniform_int_distribution<int> owner(0, volumeCount - 1);
    for (int f = 0; f < fileCount; ++f) {
        listings.files += (f ? ",{\"id\":\"" : "{\"id\":\"") + id("f", f) + "\",\"path\":\"/mounted-"
                          + std::to_string(f) + "\",\"vdsId\":\"" + vdsIds[static_cast<std::size_t>(owner(random))]
                          + "\"}";
    }
    listings.files += "]";
    return listings;
}

const Listings& listings(int volumeCount, int fileCount)
{
    static const Listings small = makeListings(1000, 10000);
    static const Listings large = makeListings(10000, 100000);
    return volumeCount == 1000 && fileCount == 10000 ? small : large;
}

void parseVdsInfos(benchmark::State& state)
{
    const Listings& text = listings(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state)
        benchmark::DoNotOptimize(fast::parseVdsInfos(text.volumes, text.files));
}

void pocoParseOnly(benchmark::State& state)
{
    const Listings& text = listings(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) {
        Poco::JSON::Parser volumes;
        benchmark::DoNotOptimize(volumes.parse(text.volumes));
        Poco::JSON::Parser files;
        benchmark::DoNotOptimize(files.parse(text.files));
    }
}

} // namespace

BENCHMARK(parseVdsInfos)->Args({1000, 10000})->Args({10000, 100000})->Unit(benchmark::kMillisecond);
BENCHMARK(pocoParseOnly)->Args({1000, 10000})->Args({10000, 100000})->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    return runWithRatios(argc, argv,
                         {{"parseVdsInfos / POCO parse, 1,000 x 10,000", "parseVdsInfos/1000/10000",
                           "pocoParseOnly/1000/10000", 1.3},
                          {"parseVdsInfos / POCO parse, 10,000 x 100,000", "parseVdsInfos/10000/100000",
                           "pocoParseOnly/10000/100000", 1.3}});
}
