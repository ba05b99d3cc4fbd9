#include "DemoServices.h"

#include "FastEmulator.h"
#include "OsduEmulator.h"

#include <fast/client/Fast.h>
#include <fast/client/VirtualDrive.h>
#include <fast/osdu/OsduSettingsKeys.h>
#include <osdu/HttpResponse.h>

#include <QDir>
#include <QFile>
#include <QSettings>

#include <Poco/Exception.h>

#include <cstdio>
#include <utility>

namespace {

// Datasets FAST knows before the tour starts, so that the OSDU page shows both states.
constexpr int kRegisteredDatasets[] = {2, 4};
const char* const kSamples[] = {"north-sea", "gulf", "barents"};
// Seconds for each sign-in exchange: the headless browser runs on a busy machine too.
constexpr int kAuthenticationTimeoutSeconds = 10;

QString key(const std::string& group, const std::string& name)
{
    return QString::fromStdString(group + '/' + name);
}

} // namespace

DemoServices::DemoServices(QString workFolder, OsduKnobs osdu) : m_workFolder(std::move(workFolder)), m_knobs(osdu)
{
}

DemoServices::~DemoServices() = default;

bool DemoServices::start()
{
    const QDir work(m_workFolder);
    if (!work.mkpath(QStringLiteral("drive")) || !work.mkpath(QStringLiteral("settings")) || !writeSamples()) {
        m_error = QStringLiteral("cannot write in the work folder %1").arg(m_workFolder);
        return false;
    }
    // The demo's own store, in the work folder, where the library reads the host's settings.
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, work.filePath(QStringLiteral("settings")));

    emulator::EmulatorOptions fastOptions;
    fastOptions.driveDir = work.filePath(QStringLiteral("drive")).toStdString();
    fastOptions.stateFile = work.filePath(QStringLiteral("fast-state.json")).toStdString();
    m_fast = std::make_unique<emulator::FastEmulator>(fastOptions);
    emulator::OsduEmulatorOptions osduOptions;
    osduOptions.latencyMs = m_knobs.latencyMs;
    osduOptions.throttling.every = m_knobs.throttleEvery;
    m_osdu = std::make_unique<emulator::OsduEmulator>(osduOptions);
    try {
        m_fast->start();
        m_osdu->start();
    } catch (const Poco::Exception& error) {
        m_error = QStringLiteral("the emulators did not start: %1").arg(QString::fromStdString(error.displayText()));
        return false;
    }
    m_osdu->seedDatasets(m_knobs.datasets);
    writeSettings();
    if (!registerDatasetsInFast())
        return false;

    std::printf("fast-panel-demo: FAST emulator on http://127.0.0.1:%u, virtual drive %s\n"
                "fast-panel-demo: OSDU emulator on %s, %d datasets (vol-0002 and vol-0004 known to FAST)\n"
                "fast-panel-demo: settings %s\n",
                m_fast->port(), fastOptions.driveDir.c_str(), m_osdu->baseUrl().c_str(), m_knobs.datasets,
                qPrintable(QSettings().fileName()));
    std::fflush(stdout);
    return true;
}

QString DemoServices::samplePath() const
{
    return QDir(m_workFolder).filePath(QStringLiteral("samples/%1.vds").arg(QString::fromUtf8(kSamples[0])));
}

bool DemoServices::writeSamples()
{
    const QDir work(m_workFolder);
    if (!work.mkpath(QStringLiteral("samples")))
        return false;
    for (const char* name : kSamples) {
        QFile sample(work.filePath(QStringLiteral("samples/%1.vds").arg(QString::fromUtf8(name))));
        if (!sample.open(QIODevice::WriteOnly)
            || sample.write(QByteArray("Sample volume ") + name + " for the FAST panel demo\n") < 0)
            return false;
    }
    return true;
}

void DemoServices::writeSettings() const
{
    using namespace fast;
    QSettings settings;
    settings.setValue(key(FAST_GROUP, FAST_HOST), QString::fromStdString(m_fast->host()));
    settings.setValue(key(FAST_GROUP, FAST_PORT), m_fast->port());
    settings.setValue(key(FAST_GROUP, FAST_MOUNT_POINT), QDir(m_workFolder).filePath(QStringLiteral("drive")));
    settings.setValue(key(FAST_GROUP, OSDU_AUTHENTICATION_TIMEOUT), kAuthenticationTimeoutSeconds);
    // Both providers sign in to the same emulator. Callback port 0 takes a free port, which the
    // emulator, unlike a real tenant, accepts.
    const emulator::OsduEmulatorOptions& osdu = m_osdu->options();
    for (const std::string group : {"AWS", "Azure"}) {
        settings.setValue(key(group, OSDU_CLIENT_ID), QString::fromStdString(osdu.clientId));
        settings.setValue(key(group, OSDU_CLIENT_SECRET), QString::fromStdString(osdu.clientSecret));
        settings.setValue(key(group, OSDU_OAUTH_URL), QString::fromStdString(m_osdu->authorizeUrl()));
        settings.setValue(key(group, OSDU_OAUTH_TOKEN_URL), QString::fromStdString(m_osdu->tokenUrl()));
        settings.setValue(key(group, OSDU_CALLBACK_URL), QStringLiteral("http://localhost"));
        settings.setValue(key(group, OSDU_CALLBACK_PORT), 0);
        settings.setValue(key(group, OSDU_BASE_URL), QString::fromStdString(m_osdu->baseUrl()));
        settings.setValue(key(group, OSDU_DATA_PARTITION_ID), QString::fromStdString(osdu.partition));
    }
}

bool DemoServices::registerDatasetsInFast()
{
    // As the panel's mount does first, with the URL the panel makes of the dataset's folder.
    const fast::Fast client(m_fast->host());
    for (const int number : kRegisteredDatasets) {
        const std::string folder = emulator::OsduEmulator::kDefaultSeedPrefix
                                   + QStringLiteral("vol-%1/").arg(number, 4, 10, QChar('0')).toStdString();
        const std::string url = fast::modifyVdsFilepath(folder);
        // 409: known from an earlier run on the same work folder, whose state FAST kept.
        const int status = client.registerVds(url)->getResponse();
        if (status != 200 && status != 409) {
            m_error = QStringLiteral("the FAST emulator did not take %1").arg(QString::fromStdString(url));
            return false;
        }
    }
    return true;
}
