#include "ScriptedTour.h"

#include "DemoWindow.h"
#include "PanelDriver.h"
#include "PanelTrees.h"
#include "ProjectStore.h"
#include "SettingsDialog.h"
#include "WindowPicture.h"

#include <fast/panel/FastTabWidget.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeView.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTimer>

#include <cstdio>
#include <optional>
#include <utility>

namespace {

// The first poll answers at once; this leaves room for a slow start of the service.
constexpr int kFirstPollTimeoutMs = 8000;
// The mount dialog gives FAST up to 10 s to write the link it renames.
constexpr int kMountTimeoutMs = 15000;
constexpr int kTourTimeoutMs = 150000;

} // namespace

ScriptedTour::ScriptedTour(DemoWindow* window, TourOptions options, QObject* parent)
    : QObject(parent), m_window(window), m_options(std::move(options))
{
    // Before the box is answered, while the window still shows it.
    connect(&m_boxes, &MessageBoxAnswerer::boxShown, this, [this] {
        if (!m_options.tourDir.isEmpty())
            shoot(QDir(m_options.tourDir).filePath(QStringLiteral("message-box.png")));
    });
}

void ScriptedTour::start()
{
    if (!m_options.tourDir.isEmpty() && !QDir().mkpath(m_options.tourDir))
        return fail(tr("cannot make the folder %1").arg(m_options.tourDir));
    QTimer::singleShot(kTourTimeoutMs, this,
                       [this] { fail(tr("the tour took longer than %1 s").arg(kTourTimeoutMs / 1000)); });

    say(tr("waiting for the panel's first connection check (%1)").arg(SettingsDialog::summary()));
    const auto answered = [this] {
        const QString status = m_window->panelStatus();
        return m_window->isFastConnected() || (!status.isEmpty() && !status.startsWith(QStringLiteral("Checking")));
    };
    waitUntil(answered, kFirstPollTimeoutMs, tr("the panel's first connection check"),
              [this] { afterConnectionCheck(); });
}

void ScriptedTour::waitUntil(const std::function<bool()>& done, int timeoutMs, const QString& what,
                             const std::function<void()>& next)
{
    auto* poll = new QTimer(this);
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    connect(poll, &QTimer::timeout, this, [this, poll, clock, done, timeoutMs, what, next] {
        if (m_done) {
            poll->deleteLater();
        } else if (!m_boxes.boxes().isEmpty()) {
            poll->deleteLater();
            fail(tr("the panel reported a problem while waiting for %1").arg(what));
        } else if (done()) {
            poll->deleteLater();
            next();
        } else if (clock->elapsed() > timeoutMs) {
            poll->deleteLater();
            fail(tr("timed out after %1 s waiting for %2").arg(timeoutMs / 1000.0).arg(what));
        }
    });
    poll->start(50);
}

void ScriptedTour::settleThen(const std::function<void()>& next)
{
    QTimer::singleShot(400, this, [this, next] {
        if (!m_done)
            next();
    });
}

void ScriptedTour::afterConnectionCheck()
{
    const QString status = m_window->panelStatus();
    if (!m_window->isFastConnected()) {
        QString reason = tr("the panel is not connected to FAST; its status line says \"%1\"").arg(status);
        if (status.startsWith(QStringLiteral("Not connected")))
            reason += tr("\n  Is FAST (or fast-emulator) running? %1 (settings in %2)")
                          .arg(SettingsDialog::summary(), QSettings().fileName());
        return fail(reason);
    }
    say(tr("connected: \"%1\"").arg(status));
    settleThen([this] {
        if (shootStep(QStringLiteral("1-connected.png")))
            mount();
    });
}

bool ScriptedTour::prepareSample()
{
    m_sample = m_options.samplePath;
    if (m_sample.isEmpty()) {
        // FAST only needs a path to register; the bytes are never read.
        m_sample = m_sampleDir.filePath(QStringLiteral("sample.vds"));
        QFile file(m_sample);
        if (!file.open(QIODevice::WriteOnly) || file.write("sample volume\n") < 0) {
            fail(tr("cannot write a sample volume at %1").arg(m_sample));
            return false;
        }
    }
    m_sample = QFileInfo(m_sample).absoluteFilePath();
    if (!QFileInfo(m_sample).isFile()) {
        fail(tr("no volume to mount at %1").arg(m_sample));
        return false;
    }
    return true;
}

void ScriptedTour::mount()
{
    fast::VdsWidget* page = localVdsPage();
    QPushButton* openButton = page ? actionButton(*page) : nullptr;
    if (!openButton || !openButton->isEnabled() || !page->treeView())
        return fail(tr("the panel has no local VDS page with a tree and an enabled Open VDS button"));
    if (!prepareSample())
        return;

    showPage(*m_window->panel(), page);
    connect(m_window->panel(), &fast::FastTabWidget::addToExtraDataManager, this,
            [this](const QString& fileName, fast::eVdsLocation) { m_mountedName = fileName; });
    connect(m_window->panel(), &fast::FastTabWidget::removeVdsFileFromProject, this,
            [this](const QString& fileName) { m_removedName = fileName; });

    say(tr("registering %1 and opening the mount dialog").arg(m_sample));
    // Open VDS asks for the file; the page then finds or adds its record, registers the volume
    // and opens the mount dialog. Only Qt's own file dialog can be answered by a script.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    answerNextFileDialog(m_sample);
    openButton->click();
    if (m_done)
        return;
    if (!m_boxes.boxes().isEmpty())
        return fail(tr("the panel could not register the volume"));

    fast::MountNewVolume* dialog = openMountDialog(page);
    QLineEdit* name = dialog ? fileNameField(*dialog) : nullptr;
    if (!name)
        return fail(tr("the panel opened no mount dialog with a field for the file name"));
    name->setText(freeFileName(QFileInfo(m_sample).completeBaseName(), m_window->project()->folder()));
    say(tr("the mount dialog is open; naming the file \"%1\"").arg(name->text()));

    settleThen([this] {
        if (shootStep(QStringLiteral("2-mount-dialog.png")))
            save();
    });
}

void ScriptedTour::save()
{
    fast::VdsWidget* page = localVdsPage();
    fast::MountNewVolume* dialog = page ? openMountDialog(page) : nullptr;
    QPushButton* dialogSave = dialog ? saveButton(*dialog) : nullptr;
    if (!dialogSave)
        return fail(tr("the mount dialog has no Save button"));
    dialogSave->click();
    if (m_done)
        return;
    waitUntil([this] { return !m_mountedName.isEmpty(); }, kMountTimeoutMs, tr("the mounted file to reach the project"),
              [this] { afterMount(); });
}

void ScriptedTour::afterMount()
{
    if (!m_window->project()->holds(m_mountedName, fast::LOCAL_FILE))
        return fail(tr("the project does not hold %1 as a local file").arg(m_mountedName));
    say(tr("mounted; the project now holds \"%1\" (local file)").arg(m_mountedName));
    // As a user would open the volume to see its new file.
    if (fast::VdsWidget* page = localVdsPage())
        page->treeView()->expandAll();
    settleThen([this] {
        if (!m_options.screenshotFile.isEmpty()) {
            if (!shoot(m_options.screenshotFile))
                return;
            say(tr("wrote %1").arg(QDir::toNativeSeparators(m_options.screenshotFile)));
        }
        if (!shootStep(QStringLiteral("3-mounted.png")))
            return;
        if (m_options.tourDir.isEmpty())
            return succeed();
        unmount();
    });
}

void ScriptedTour::unmount()
{
    fast::VdsWidget* page = localVdsPage();
    if (!page)
        return fail(tr("the local VDS page is gone"));
    const std::optional<fast::VdsModel> mounted = volumeAtRow(page->treeView(),
                                                              rowOfVolume(page->treeView(), m_sample.toStdString()));
    if (!mounted || mounted->vdsId.empty() || mounted->files.empty())
        return fail(tr("the local tree does not show the mounted volume with its file"));

    say(tr("unmounting volume %1 with %2 file(s)")
            .arg(QString::fromStdString(mounted->vdsId))
            .arg(static_cast<int>(mounted->files.size())));
    // What a click on the volume's delete icon sends.
    Q_EMIT page->treeView()->unmountVds(mounted->vdsId, mounted->files);
    waitUntil([this] { return m_removedName == m_mountedName; }, 5000, tr("the file's removal from the project"),
              [this] { afterUnmount(); });
}

void ScriptedTour::afterUnmount()
{
    if (m_window->project()->holds(m_mountedName, fast::LOCAL_FILE))
        return fail(tr("the project still holds %1").arg(m_mountedName));
    say(tr("unmounted; the project no longer holds \"%1\"").arg(m_mountedName));
    settleThen([this] {
        if (shootStep(QStringLiteral("4-unmounted.png")))
            osduSignIn();
    });
}

void ScriptedTour::succeed()
{
    if (m_done)
        return;
    m_done = true;
    say(tr("done"));
    Q_EMIT finished(0);
}

void ScriptedTour::fail(const QString& reason)
{
    if (m_done)
        return;
    m_done = true;
    QString text = reason;
    for (const QString& box : m_boxes.summaries())
        text += tr("\n  the panel said: %1").arg(box);
    std::fprintf(stderr, "fast-panel-demo: tour failed: %s\n", qPrintable(text));
    if (!m_options.tourDir.isEmpty() && shoot(QDir(m_options.tourDir).filePath(QStringLiteral("failed.png"))))
        std::fprintf(stderr, "fast-panel-demo: the window at that moment: %s\n",
                     qPrintable(QDir(m_options.tourDir).filePath(QStringLiteral("failed.png"))));
    Q_EMIT finished(1);
}

bool ScriptedTour::shoot(const QString& file)
{
    if (!QDir().mkpath(QFileInfo(file).absolutePath()) || !windowPicture(m_window).save(file)) {
        fail(tr("cannot write %1").arg(file));
        return false;
    }
    return true;
}

bool ScriptedTour::shootStep(const QString& name)
{
    if (m_options.tourDir.isEmpty())
        return true;
    const QString file = QDir(m_options.tourDir).filePath(name);
    if (!shoot(file))
        return false;
    say(tr("wrote %1").arg(QDir::toNativeSeparators(file)));
    return true;
}

fast::VdsWidget* ScriptedTour::localVdsPage() const
{
    return m_window->panel() ? localPage(*m_window->panel()) : nullptr;
}

fast::OsduWidget* ScriptedTour::osduSearchPage() const
{
    return m_window->panel() ? osduPage(*m_window->panel()) : nullptr;
}

void ScriptedTour::say(const QString& text)
{
    std::printf("tour: %s\n", qPrintable(text));
    std::fflush(stdout);
}
