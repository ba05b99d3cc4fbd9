// A host's first contact with the installed library: every client operation must be reachable
// through the umbrella header and the one imported target.
#include <fast/fast.h>
#include <korvane/MDEventBus.h>

#include <QCoreApplication>
#include <QMetaType>
#include <QSettings>
#include <QTemporaryDir>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

// Many host sources declare the standard types they send in signals; the library's headers must
// leave that to them.
Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(std::vector<fast::VdsFile>)
Q_DECLARE_METATYPE(std::shared_ptr<osdu::StorageRecordCollection>)

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    int traces = 0;
    const int listener = MDEventBus::addListener([&traces](int, const QString&) { ++traces; });

    // The host's settings in a scratch folder, with FAST on port 1 of loopback, where nothing
    // listens: every call fails at the transport with status 0.
    QTemporaryDir settingsFolder;
    QCoreApplication::setOrganizationName("FastPanelConsumer");
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsFolder.path());
    QSettings().setValue("FAST/FAST_PORT", "1");
    const fast::Fast client("127.0.0.1");
    bool ok = !client.getVersion() && !client.isKorvanePluginAvailable();
    ok = ok && client.getAbout()->getResponse() == 0;
    ok = ok && client.getVdsList()->getResponse() == 0 && client.getFileList()->getResponse() == 0;
    ok = ok && !client.findVdsByUrl("/data/a.vds");
    ok = ok && client.registerVds("/data/a.vds")->getResponse() == 0;
    ok = ok && client.mountFile("1", "a", "/tmp", 0, 1, 0, 1, 0, 1)->getResponse() == 0;
    ok = ok && client.deleteFile("1")->getResponse() == 0;
    client.unmountVds("1", {fast::VdsFile{"2", "a"}});
    try {
        client.getPluginDescription("Korvane", "1");
        ok = false;
    } catch (const std::exception&) {
    }

    ok = ok && fast::parseVdsInfos("[{\"id\":1,\"url\":\"u\"}]", "[]").size() == 1;
    ok = ok && fast::jsonValue("a", "{\"a\":2}") == "2";
    ok = ok && fast::parseSubvolumeRange("{}").dim0Min.empty();
    ok = ok && fast::mountPoint() == "K:" && fast::isMountedInVirtualDrive("K:/x");
    ok = ok && !fast::fileExistsInVirtualDrive("x.kv");
    ok = ok && fast::modifyVdsFilepath("s3://b/") == "https://b";

    fast::CheckConnectionToFastWorker worker(nullptr);
    bool beat = false;
    QObject::connect(&worker, &fast::CheckConnectionToFastWorker::heartBeat, &app, [&beat] { beat = true; });
    worker.run();
    ok = ok && beat && traces > 0;

    MDEventBus::removeListener(listener);
    std::cout << (ok ? "consumer: every operation reachable" : "consumer: FAILED") << std::endl;
    return ok ? 0 : 1;
}
