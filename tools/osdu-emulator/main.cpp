// osdu-emulator: an OSDU data platform and its OAuth 2.0 authorization server on loopback, for
// the demo and for host developers who work without a platform.

#include "OsduEmulator.h"

#include <CommandLine.h>
#include <ServeUntilStopped.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>

namespace {

const char* const kUsage =
    "Usage: osdu-emulator [--port N] [--datasets N] [--partition P] [--client-id ID] [--client-secret S]\n"
    "                     [--access-ttl SECONDS] [--refresh-ttl SECONDS] [--latency-ms N] [--seed-prefix URL]\n"
    "                     [--fail-status S] [--fail-every K] [--fail-first N] [--retry-after TEXT]\n"
    "\n"
    "Serves OAuth 2.0 (/oauth2/authorize, /oauth2/token), Search v2 (/api/search/v2/query) and\n"
    "Storage v2 (/api/storage/v2/...) on 127.0.0.1:N until interrupted.\n"
    "  --port N               port to listen on (default 0: a free one; it is printed)\n"
    "  --datasets N           file collections to seed (default 20)\n"
    "  --partition P          the data partition, checked against data-partition-id (default opendes)\n"
    "  --client-id ID         the one registered OAuth client (default fast-panel)\n"
    "  --client-secret S      its secret (default fast-panel-secret); \"\" makes it a public client\n"
    "  --access-ttl SECONDS   access token lifetime (default 3600)\n"
    "  --refresh-ttl SECONDS  refresh token lifetime (default 86400)\n"
    "  --latency-ms N         added to every answer, as over a network far away (default 0)\n"
    "  --seed-prefix URL      where the seeded FileCollectionPaths begin\n"
    "                         (default s3://fast-demo-bucket/volumes/)\n"
    "  --fail-status S        how data requests are turned away: 429, 502, 503, 504, or 0 for a\n"
    "                         connection reset (default 429)\n"
    "  --fail-every K         turn away every K-th search or storage request (default 0: none)\n"
    "  --fail-first N         turn away the first N search or storage requests (default 0)\n"
    "  --retry-after TEXT     a 429's Retry-After, seconds or an HTTP date (default 0; \"\" for none)\n"
    "  --help                 this text\n";

struct Arguments
{
    emulator::OsduEmulatorOptions options;
    int datasets = 20;
    std::string seedPrefix = emulator::OsduEmulator::kDefaultSeedPrefix;
};

Arguments parse(int argc, char** argv)
{
    emulator::CommandLine line(argc, argv, "osdu-emulator", kUsage);
    Arguments arguments;
    emulator::OsduEmulatorOptions& options = arguments.options;
    while (line.next()) {
        const std::string& option = line.option();
        if (option == "--port") {
            options.port = static_cast<unsigned short>(line.number(0, 65535));
        } else if (option == "--datasets") {
            arguments.datasets = static_cast<int>(line.number(0, 9999));
        } else if (option == "--partition") {
            options.partition = line.value();
        } else if (option == "--client-id") {
            options.clientId = line.value();
        } else if (option == "--client-secret") {
            options.clientSecret = line.value();
        } else if (option == "--access-ttl") {
            options.accessTokenSeconds = static_cast<int>(line.number(1, 100000000));
        } else if (option == "--refresh-ttl") {
            options.refreshTokenSeconds = static_cast<int>(line.number(1, 100000000));
        } else if (option == "--latency-ms") {
            options.latencyMs = static_cast<int>(line.number(0, 60000));
        } else if (option == "--fail-status") {
            options.throttling.status = static_cast<int>(line.number(0, 599));
            if (options.throttling.status != 0 && options.throttling.status != 429
                && (options.throttling.status < 502 || options.throttling.status > 504))
                line.fail("--fail-status must be 0, 429, 502, 503 or 504");
        } else if (option == "--fail-every") {
            options.throttling.every = static_cast<int>(line.number(0, 1000000));
        } else if (option == "--fail-first") {
            options.throttling.first = static_cast<int>(line.number(0, 1000000));
        } else if (option == "--retry-after") {
            options.throttling.retryAfter = line.value();
        } else if (option == "--seed-prefix") {
            arguments.seedPrefix = line.value();
        } else {
            line.fail("unknown option " + option);
        }
    }
    if (options.partition.empty() || options.clientId.empty())
        line.fail("--partition and --client-id must not be empty");
    return arguments;
}

} // namespace

int main(int argc, char** argv)
{
    const Arguments arguments = parse(argc, argv);

    return emulator::serveUntilStopped("osdu-emulator", [&arguments](const std::function<void()>& waitForStop) {
        emulator::OsduEmulator osdu(arguments.options);
        osdu.seedDatasets(arguments.datasets, arguments.seedPrefix);
        osdu.start();
        std::cout << "osdu-emulator: listening on " << osdu.baseUrl() << " (partition " << arguments.options.partition
                  << ", " << osdu.recordCount() << " file collections)\n"
                  << "  authorize: " << osdu.authorizeUrl() << "\n"
                  << "  token:     " << osdu.tokenUrl() << "\n"
                  << "  client:    " << arguments.options.clientId
                  << (arguments.options.clientSecret.empty() ? " (public)" : " (with secret)") << std::endl;
        waitForStop();
    });
}
