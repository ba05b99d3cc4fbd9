// The panel's pages as a person uses them, while FAST answers as the input says. The cloud and
// local pages list, mount through the mount dialog and list again; the OSDU page shows a fixed
// search result, mounts its first dataset and sees FAST go and come back; then each tree's
// delete and unmount icons are clicked. All of it over real HTTP to the in-process emulator,
// with real widgets on the offscreen platform; every message box is answered with its default
// button as it opens.
//
// The input is cut at "--" lines. The first piece is the person's: on its first line one word
// per mount dialog, in the order they open ("cancel" cancels, "-" saves without a name, any
// other word is typed as the name, printable ASCII only, with the dialog's number appended so
// that no two dialogs of one run wait for the same link file; missing words save "file<n>");
// on its second line the URL typed on the cloud page. Each further piece is one route's answer,
// named on its first line: "GET /api/v2/vds/", "GET /api/v2/file/", "POST /api/v2/vds/",
// "GET /api/v2/plugin/", "POST /api/v2/file/", "DELETE /api/v2/file/" or "DELETE /api/v2/vds/",
// then maybe a status, which answers at once without the service acting, and "truncate" or
// "reset" to break the answer off. Lines after the first, even one empty line, are a body that
// replaces the answer's. Routes no piece names are the service's own.
//
// GET /api/v2/about has no part here: only the connection worker asks it, and the worker sleeps
// five seconds after every poll.

#include "FuzzInput.h"

#include <FastEmulator.h>

#include <fast/fast.h>
#include <osdu/FileCollection.h>

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSet>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <sstream>

namespace {

struct Route
{
    const char* method;
    const char* pathPrefix;
};

constexpr Route kRoutes[] = {
    {"GET", "/api/v2/vds/"},   {"GET", "/api/v2/file/"},    {"POST", "/api/v2/vds/"},   {"GET", "/api/v2/plugin/"},
    {"POST", "/api/v2/file/"}, {"DELETE", "/api/v2/file/"}, {"DELETE", "/api/v2/vds/"},
};

const char* const kCloudUrl = "https://storage.example/surveys/north/cube";
const char* const kLocalPath = "/data/surveys/south.vds";

void installAnswer(emulator::FastEmulator& fast, const std::string& piece)
{
    const auto [form, body] = fuzz::firstLine(piece);
    for (const Route& route : kRoutes) {
        const std::string name = std::string(route.method) + ' ' + route.pathPrefix;
        if (form.compare(0, name.size(), name) != 0)
            continue;
        std::string how = form.substr(name.size());
        how.erase(0, how.find_first_not_of(' '));
        emulator::Fault fault;
        // Below 200 curl would wait for the final answer, and the client has no time-out. A mount
        // answered 200 by nobody would leave the dialog waiting ten seconds for a link never
        // written.
        const int status = fuzz::statusCode(how);
        if (status >= 200 && !(name == "POST /api/v2/file/" && status == 200))
            fault.status = status;
        if (how.find("truncate") != std::string::npos)
            fault.delivery = emulator::Delivery::TruncatedBody;
        if (how.find("reset") != std::string::npos)
            fault.delivery = emulator::Delivery::ResetConnection;
        if (piece.find('\n') != std::string::npos)
            fault.body = body;
        fast.setFault(route.method, route.pathPrefix, fault);
        return;
    }
}

// Answers each message box with its default button from within the box's own event loop.
class MessageBoxAnswerer : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* box = event->type() == QEvent::Show ? qobject_cast<QMessageBox*>(watched) : nullptr;
        if (box) {
            QTimer::singleShot(0, box, [box] {
                if (QPushButton* button = box->defaultButton())
                    button->click();
                else
                    box->reject();
            });
        }
        return false;
    }
};

QtMessageHandler qtHandler = nullptr;

// The offscreen platform says this at every dialog shown, which would bury the fuzzer's own log.
void passOnQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (message != QLatin1String("This plugin does not support propagateSizeHints()"))
        qtHandler(type, context, message);
}

QApplication& makeApplication()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qtHandler = qInstallMessageHandler(&passOnQtMessage);
    static int argc = 1;
    static char name[] = "fuzz_panel_actions";
    static char* argv[] = {name, nullptr};
    // Never destroyed: widgets of the library may still be queued for deletion at exit.
    return *new QApplication(argc, argv);
}

// What lives as long as the process: the application, settings and the FAST emulator in a
// temporary folder, the search result the OSDU page shows.
class Environment
{
public:
    Environment()
    {
        if (!m_root.isValid() || !QDir(m_root.path()).mkdir("drive"))
            std::abort();
        QCoreApplication::setOrganizationName("FastPanelFuzz");
        QCoreApplication::setApplicationName("panel_actions");
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_root.filePath("settings"));
        QSettings::setPath(QSettings::IniFormat, QSettings::SystemScope, m_root.filePath("settings/system"));
        m_application.installEventFilter(&m_boxes);

        emulator::EmulatorOptions options;
        options.driveDir = m_root.filePath("drive").toStdString();
        options.linkDelayMs = 0;
        m_fast = std::make_unique<emulator::FastEmulator>(options);
        m_fast->start();

        QSettings settings;
        settings.setValue("FAST/FAST_HOST", "127.0.0.1");
        settings.setValue("FAST/FAST_PORT", QString::number(m_fast->port()));
        settings.setValue("FAST/FAST_MOUNT_POINT", m_root.filePath("drive"));
        settings.sync();
        m_client = std::make_shared<fast::Fast>("127.0.0.1");

        const std::string kind = "osdu:wks:dataset--FileCollection.Bluware.OpenVDS:1.0.0";
        const auto dataset = [&kind](const char* id, const char* name, const char* path) {
            return std::make_shared<osdu::FileCollection>(std::string("opendes:dataset--FileCollection.Bluware.") + id,
                                                          kind, "{}", name, "Full stack, time",
                                                          osdu::DatasetProperties{path, {}});
        };
        m_searchResults = std::make_shared<osdu::StorageRecordCollection>(osdu::StorageRecordCollection{
            dataset("north", "North", "s3://seismic.s3.eu-west-1.amazonaws.com/surveys/north/"),
            dataset("nordsjo", "Nordsjø Ålesund 北海", "az://surveys/nordsjo"), dataset("pathless", "Pathless", ""),
            std::make_shared<osdu::StorageRecord>("opendes:work-product-component--SeismicTraceData:1",
                                                  "osdu:wks:work-product-component--SeismicTraceData:1.0.0", "{}")});
    }

    QString root() const { return m_root.path(); }
    emulator::FastEmulator& fast() { return *m_fast; }
    const std::shared_ptr<fast::Fast>& client() const { return m_client; }
    const std::shared_ptr<osdu::StorageRecordCollection>& searchResults() const { return m_searchResults; }

    // The next run meets the service as this one did: no faults, nothing registered or mounted.
    void reset()
    {
        m_fast->clearFaults();
        emulator::FastService& service = m_fast->service();
        for (const auto& file : service.files())
            service.handle("DELETE", "/api/v2/file/" + file.id, {});
        for (const auto& volume : service.volumes())
            service.handle("DELETE", "/api/v2/vds/" + volume.id, {});
        m_fast->clearRequests();
    }

private:
    QApplication& m_application = makeApplication();
    QTemporaryDir m_root;
    MessageBoxAnswerer m_boxes;
    std::unique_ptr<emulator::FastEmulator> m_fast;
    std::shared_ptr<fast::Fast> m_client;
    std::shared_ptr<osdu::StorageRecordCollection> m_searchResults;
};

Environment& sharedEnvironment()
{
    static Environment instance;
    return instance;
}

// The three pages of one run in one window, over a project folder of the run's own.
class Panel
{
public:
    Panel(Environment& environment, const std::string& person)
        : m_environment(environment), m_project(environment.root() + "/project-XXXXXX")
    {
        const auto [words, url] = fuzz::firstLine(person);
        std::istringstream answers(words);
        for (std::string word; answers >> word;)
            m_answers.push_back(word);
        m_cloudUrl = url.empty() ? QString(kCloudUrl) : QString::fromStdString(fuzz::firstLine(url).first);

        const auto& client = environment.client();
        m_cloud = new fast::VdsWidget(fast::VdsWidget::CLOUD_URL, client, m_project.path(), &m_window);
        m_local = new fast::VdsWidget(fast::VdsWidget::LOCAL_FILE, client, m_project.path(), &m_window);
        m_osdu = new fast::OsduWidget(client, m_project.path(), &m_window);
        auto* layout = new QVBoxLayout(&m_window);
        for (fast::FastWidget* page : pages()) {
            layout->addWidget(page);
            page->setConnectedToFast(true);
        }
        m_window.resize(640, 960);
    }

    void run()
    {
        listVolumes();
        m_cloud->findChild<QLineEdit*>()->setText(m_cloudUrl);
        m_cloud->findChild<QPushButton*>()->click();
        answerMountDialog(*m_cloud);
        m_local->onMountVds(m_project.path(), fast::VdsModel({}, "south.vds", {}, {}, {}, kLocalPath, {}));
        answerMountDialog(*m_local);
        mountFromTree(*m_cloud, 0);
        listVolumes();

        m_osdu->onSearchDone(m_environment.searchResults());
        mountFromTree(*m_osdu, 0);
        m_osdu->setConnectedToFast(false);
        m_osdu->setConnectedToFast(true);

        for (fast::FastWidget* page : pages()) {
            clickDelete(*page);
            clickUnmount(*page);
        }

        // Drawn once, in the state the run ends in: the trees' delegates meet what FAST listed.
        m_window.grab();
    }

private:
    std::array<fast::FastWidget*, 3> pages() const { return {m_cloud, m_local, m_osdu}; }

    void listVolumes()
    {
        QSet<QString> projectFiles;
        for (const QFileInfo& file : QDir(m_project.path()).entryInfoList(QDir::Files))
            projectFiles.insert(file.absoluteFilePath());
        m_cloud->init(projectFiles);
        m_local->init(projectFiles);
    }

    // As the tree's mount icon on the row-th volume does.
    void mountFromTree(fast::FastWidget& page, int row)
    {
        if (const std::optional<fast::VdsModel> record = page.treeView()->model()->vdsAt(row)) {
            Q_EMIT page.treeView()->mountVds(*record);
            answerMountDialog(page);
        }
    }

    // The delete icon on the first file a tree shows.
    static void clickDelete(fast::FastWidget& page)
    {
        for (const fast::VdsModel& record : page.treeView()->model()->vdsList()) {
            if (!record.files.empty()) {
                fast::VdsFile file = record.files.front();
                Q_EMIT page.treeView()->deleteFile(record.vdsId, file);
                return;
            }
        }
    }

    // The unmount icon on the last volume FAST knows.
    static void clickUnmount(fast::FastWidget& page)
    {
        const QList<fast::VdsModel> records = page.treeView()->model()->vdsList();
        for (auto record = records.rbegin(); record != records.rend(); ++record) {
            if (!record->vdsId.empty()) {
                Q_EMIT page.treeView()->unmountVds(record->vdsId, record->files);
                return;
            }
        }
    }

    // Answers the dialog the page has just opened and waits until it has closed.
    void answerMountDialog(QWidget& page)
    {
        fast::MountNewVolume* dialog = nullptr;
        for (auto* candidate : page.findChildren<fast::MountNewVolume*>()) {
            if (candidate->isVisible())
                dialog = candidate;
        }
        if (!dialog)
            return;
        const std::size_t number = m_dialogs++;
        const std::string word = number < m_answers.size() ? m_answers[number] : "file";
        QPushButton* save = nullptr;
        QPushButton* cancel = nullptr;
        for (auto* button : dialog->findChildren<QPushButton*>()) {
            if (button->text() == "Save")
                save = button;
            else if (button->text() == "Cancel")
                cancel = button;
        }

        bool finished = false;
        QEventLoop loop;
        QObject::connect(dialog, &QDialog::finished, &loop, [&finished, &loop] {
            finished = true;
            loop.quit();
        });
        if (word != "cancel") {
            QString name;
            for (const char c : word) {
                if (c > ' ' && c < 0x7f)
                    name += QLatin1Char(c);
            }
            if (word != "-")
                dialog->findChild<QLineEdit*>()->insert(name + QString::number(number));
            save->click();
        }
        // Still open with Cancel enabled: the name was refused, and the person gives up.
        if (!finished && cancel->isEnabled())
            cancel->click();
        if (!finished)
            loop.exec();
    }

    Environment& m_environment;
    QTemporaryDir m_project;
    QWidget m_window;
    fast::VdsWidget* m_cloud = nullptr;
    fast::VdsWidget* m_local = nullptr;
    fast::OsduWidget* m_osdu = nullptr;
    QString m_cloudUrl;
    std::vector<std::string> m_answers;
    std::size_t m_dialogs = 0;
};

} // namespace

// As in ./dev sanitize: the offscreen platform's font database keeps what fontconfig hands it for
// fallback fonts without a pointer left to it. Without frame pointers in fontconfig the stack
// often ends there, short of the plug-in.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): the name LeakSanitizer asks for
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libqoffscreen.so\nleak:libfontconfig.so\n";
}

// libFuzzer checks for leaks after many runs; the list of what was suppressed each time is noise.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): the name LeakSanitizer asks for
extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Environment& environment = sharedEnvironment();
    const std::vector<std::string> pieces = fuzz::splitAtLines(fuzz::text(data, size), "--");
    for (std::size_t i = 1; i < pieces.size(); ++i)
        installAnswer(environment.fast(), pieces[i]);
    {
        Panel panel(environment, pieces.front());
        panel.run();
    }

    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    environment.reset();
    return 0;
}
