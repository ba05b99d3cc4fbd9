#include "DemoWindow.h"

#include "EventBusPane.h"
#include "PanelControls.h"
#include "ProjectPane.h"
#include "ProjectStore.h"
#include "SettingsDialog.h"

#include <fast/panel/FastTabWidget.h>
#include <korvane/IconXPMHandler.h>

#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>

DemoWindow::DemoWindow(const QString& projectFolder, QWidget* parent)
    : QMainWindow(parent), m_project(new ProjectStore(projectFolder, this)),
      m_projectPane(new ProjectPane(m_project, this)), m_dock(new QDockWidget(tr("FAST"), this)),
      m_settingsSummary(new QLabel(this))
{
    setWindowTitle(tr("FAST panel demo - %1").arg(QDir::toNativeSeparators(m_project->folder())));
    resize(1400, 840);

    auto* centre = new QSplitter(Qt::Vertical, this);
    centre->addWidget(m_projectPane);
    centre->addWidget(new EventBusPane(centre));
    centre->setStretchFactor(0, 1);
    centre->setStretchFactor(1, 2);
    setCentralWidget(centre);

    m_dock->setObjectName("fastDock");
    m_dock->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    addDockWidget(Qt::LeftDockWidgetArea, m_dock);
    // Wide enough for the three tab titles side by side and the trees' two text columns.
    resizeDocks({m_dock}, {700}, Qt::Horizontal);

    statusBar()->addPermanentWidget(m_settingsSummary);
    createMenus();
    openPanel();
}

QString DemoWindow::panelStatus() const
{
    const QLabel* status = m_panel ? statusLabel(*m_panel) : nullptr;
    return status ? status->text() : QString();
}

void DemoWindow::reopenPanel()
{
    delete m_panel;
    m_connected = false;
    openPanel();
    statusBar()->showMessage(tr("Panel reopened with the current settings"), 8000);
}

void DemoWindow::createMenus()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Quit"), this, &DemoWindow::close)->setShortcut(QKeySequence::Quit);

    QMenu* fastMenu = menuBar()->addMenu(tr("F&AST"));
    fastMenu->addAction(tr("&Settings..."), this, &DemoWindow::editSettings);
    fastMenu->addAction(tr("&Reopen Panel"), this, &DemoWindow::reopenPanel);
    fastMenu->addSeparator();
    fastMenu->addAction(m_dock->toggleViewAction());
}

void DemoWindow::openPanel()
{
    m_panel = new fast::FastTabWidget(m_project->folder(), m_dock);
    m_dock->setWidget(m_panel);
    m_dock->show();

    connect(m_panel, &fast::FastTabWidget::fastConnected, this, &DemoWindow::onFastConnected);
    connect(m_panel, &fast::FastTabWidget::addToExtraDataManager, this, &DemoWindow::onAddToExtraDataManager);
    connect(m_panel, &fast::FastTabWidget::removeVdsFileFromProject, this, &DemoWindow::onRemoveVdsFileFromProject);
    connect(m_panel, &fast::FastTabWidget::updateProjectBrowser, m_projectPane, &ProjectPane::refreshFolder);

    // The host's own icons for the three tabs: OSDU, local file, cloud URL.
    m_panel->setTabIcons({*iconHandler->getPixmap("down_ok"), *iconHandler->getPixmap("projectopen24"),
                          *iconHandler->getPixmap("down_ko")});

    showSettingsSummary();
}

void DemoWindow::editSettings()
{
    SettingsDialog dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    showSettingsSummary();
    if (dialog.reopenRequested())
        reopenPanel();
    else
        statusBar()->showMessage(tr("Settings saved; FAST > Reopen Panel applies them."), 8000);
}

void DemoWindow::onFastConnected(bool connected)
{
    m_connected = connected;
    if (connected) {
        // The trees list the volumes of which the project holds a mounted file.
        m_panel->fillTrees(m_project->addedPaths(fast::LOCAL_FILE), m_project->addedPaths(fast::CLOUD_URL));
        statusBar()->showMessage(tr("FAST connected"));
    } else {
        m_panel->clearTrees();
        statusBar()->showMessage(tr("FAST not connected"));
    }
}

void DemoWindow::onAddToExtraDataManager(const QString& fileName, fast::eVdsLocation location)
{
    m_project->add(fileName, location);
    statusBar()->showMessage(tr("Added %1 (%2) to the project").arg(fileName, ProjectStore::locationName(location)),
                             8000);
}

void DemoWindow::onRemoveVdsFileFromProject(const QString& fileName)
{
    m_project->remove(fileName);
    m_projectPane->refreshFolder();
    statusBar()->showMessage(tr("Removed %1 from the project").arg(fileName), 8000);
}

void DemoWindow::showSettingsSummary()
{
    m_settingsSummary->setText(SettingsDialog::summary());
}
