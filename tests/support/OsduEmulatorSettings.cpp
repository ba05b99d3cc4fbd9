#include "OsduEmulatorSettings.h"

#include "TestSettings.h"

std::unique_ptr<emulator::OsduEmulator> startOsduEmulator(TestSettings& settings,
                                                          const emulator::OsduEmulatorOptions& options, int datasets,
                                                          const QString& callbackUrl)
{
    auto osdu = std::make_unique<emulator::OsduEmulator>(options);
    osdu->seedDatasets(datasets);
    osdu->start();
    const auto aws = [&settings](const char* key, const std::string& value) {
        settings.set("AWS", key, QString::fromStdString(value));
    };
    aws("OSDU_CLIENT_ID", options.clientId);
    aws("OSDU_CLIENT_SECRET", options.clientSecret);
    aws("OSDU_OAUTH_URL", osdu->authorizeUrl());
    aws("OSDU_OAUTH_TOKEN_URL", osdu->tokenUrl());
    aws("OSDU_CALLBACK_URL", callbackUrl.toStdString());
    aws("OSDU_CALLBACK_PORT", "0");
    aws("OSDU_BASE_URL", osdu->baseUrl());
    aws("OSDU_DATA_PARTITION_ID", options.partition);
    return osdu;
}
