#include "ScriptedTour.h"

#include "DemoWindow.h"
#include "PanelControls.h"
#include "ProjectStore.h"
#include "SettingsDialog.h"
#include "WindowPicture.h"

#include <fast/panel/FastTabWidget.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeView.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>

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
    // A warning box runs its own event loop, in which this timer keeps firing.
    connect(&m_boxWatch, &QTimer::timeout, this, &ScriptedTour::answerMessageBoxes);
}

void ScriptedTour::start()
{
    if (!m_options.tourDir.isEmpty() && !QDir().mkpath(m_options.tourDir))
        return fail(tr("cannot make the folder %1").arg(m_options.tourDir));
    m_boxWatch.start(100);
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
        } else if (!m_messageBoxes.isEmpty()) {
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

void ScriptedTour::mount()
{
    fast::VdsWidget* page = panelControls::localPage(m_window->panel());
    if (!page)
        return fail(tr("the panel has no local VDS page with a tree"));

    m_sample = m_options.samplePath;
    if (m_sample.isEmpty()) {
        // FAST only needs a path to register; the bytes are never read.
        m_sample = m_sampleDir.filePath(QStringLiteral("sample.vds"));
        QFile file(m_sample);
        if (!file.open(QIODevice::WriteOnly) || file.write("sample volume\n") < 0)
            return fail(tr("cannot write a sample volume at %1").arg(m_sample));
    }
    m_sample = QFileInfo(m_sample).absoluteFilePath();
    if (!QFileInfo(m_sample).isFile())
        return fail(tr("no volume to mount at %1").arg(m_sample));

    panelControls::showPage(m_window->panel(), page);
    const fast::VdsModel record = panelControls::chooseLocalVolume(page, m_sample);

    connect(m_window->panel(), &fast::FastTabWidget::addToExtraDataManager, this,
            [this](const QString& fileName, fast::eVdsLocation) { m_mountedName = fileName; });
    connect(m_window->panel(), &fast::FastTabWidget::removeVdsFileFromProject, this,
            [this](const QString& fileName) { m_removedName = fileName; });

    say(tr("registering %1 and opening the mount dialog").arg(m_sample));
    page->onMountVds(m_window->project()->folder(), record);
    if (m_done)
        return;
    if (!m_messageBoxes.isEmpty())
        return fail(tr("the panel could not register the volume"));

    fast::MountNewVolume* dialog = panelControls::openMountDialog(page);
    if (!dialog)
        return fail(tr("the panel opened no mount dialog"));
    QLineEdit* name = panelControls::fileNameField(dialog);
    if (!name)
        return fail(tr("the mount dialog has no field for the file name"));
    name->setText(panelControls::freeFileName(QFileInfo(m_sample).completeBaseName(), m_window->project()->folder()));
    say(tr("the mount dialog is open; naming the file \"%1\"").arg(name->text()));

    settleThen([this] {
        if (shootStep(QStringLiteral("2-mount-dialog.png")))
            save();
    });
}

void ScriptedTour::save()
{
    fast::VdsWidget* page = panelControls::localPage(m_window->panel());
    QPushButton* saveButton = page ? panelControls::saveButton(panelControls::openMountDialog(page)) : nullptr;
    if (!saveButton)
        return fail(tr("the mount dialog has no Save button"));
    saveButton->click();
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
    if (fast::VdsWidget* page = panelControls::localPage(m_window->panel()))
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
    fast::VdsWidget* page = panelControls::localPage(m_window->panel());
    if (!page)
        return fail(tr("the local VDS page is gone"));
    const std::optional<fast::VdsModel> mounted = panelControls::volumeWithUrl(page, m_sample);
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
    for (const QString& box : std::as_const(m_messageBoxes))
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

void ScriptedTour::answerMessageBoxes()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<QMessageBox*>(window);
        if (!box || !box->isVisible() || box->property("answeredByTour").toBool())
            continue;
        box->setProperty("answeredByTour", true);
        m_messageBoxes << box->windowTitle() + ": " + box->text();
        if (!m_options.tourDir.isEmpty())
            shoot(QDir(m_options.tourDir).filePath(QStringLiteral("message-box.png")));
        QAbstractButton* button = box->defaultButton();
        if (!button)
            button = box->buttons().value(0);
        if (button)
            button->click();
        else
            box->reject();
    }
}

void ScriptedTour::say(const QString& text)
{
    std::printf("tour: %s\n", qPrintable(text));
    std::fflush(stdout);
}
