#include <fast/panel/FastTabWidget.h>

#include <fast/client/Fast.h>
#include <fast/panel/BackgroundWork_p.h>
#include <fast/panel/CheckConnectionToFastWorker.h>
#include <fast/panel/ControlNames.h>
#include <fast/panel/OsduWidget.h>
#include <fast/panel/VdsWidget.h>

#include <korvane/IconXPMHandler.h>
#include <kvWidgets/HelpToolTip.h>
#include <osdu/Settings.h>

#include <QCloseEvent>
#include <QFileSystemWatcher>
#include <QGridLayout>
#include <QLabel>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>

namespace fast {

namespace {

const char* const kPanelHelp = QT_TRANSLATE_NOOP(
    "fast::FastTabWidget",
    "Once the volumes of interest are listed:<br>&nbsp;- Mount a VDS into current project by clicking on either <img "
    "src=':/light/down_ok.png' width=\"12\" height=\"12\"> or <img src=':/light/down_ko.png' width=\"12\" "
    "height=\"12\"></br><br>&nbsp;- Unmount a VDS by clicking on <img src=':/light/delete24.png' width=\"12\" "
    "height=\"12\"></br><br>The icon <img src=':/light/down_ok.png' width=\"12\" height=\"12\"> indicates that the "
    "VDS is not locally registered in the FAST™ virtual drive.</br><br>The icon <img src=':/light/down_ko.png' "
    "width=\"12\" height=\"12\"> indicates that the VDS is locally registered in the FAST™ virtual drive.</br>");

} // namespace

FastTabWidget::FastTabWidget(const QString& projectPath, QWidget* parent) : QWidget(parent)
{
    const auto fast = std::make_shared<Fast>(osdu::getSettingValue(FAST_GROUP, FAST_HOST, "localhost"));

    m_statusLabel = new QLabel(tr("Checking connection to Bluware FAST™..."), this);
    m_statusLabel->setObjectName(kStatusLabel);
    auto* help = new kvWidgets::HelpToolTip(*iconHandler->getPixmap("help24"), tr(kPanelHelp), this);

    auto* layout = new QGridLayout(this);
    m_tabWidget = new QTabWidget(this);
    m_tabWidget->setObjectName(kPageTabs);
    const QList<FastWidget*> pages{
        new OsduWidget(fast, projectPath, m_tabWidget),
        new VdsWidget(VdsWidget::LOCAL_FILE, fast, projectPath, m_tabWidget),
        new VdsWidget(VdsWidget::CLOUD_URL, fast, projectPath, m_tabWidget),
    };
    pages[0]->setObjectName(kOsduPage);
    pages[1]->setObjectName(kLocalPage);
    pages[2]->setObjectName(kCloudPage);
    m_tabWidget->addTab(pages[0], tr("OSDU™ Data Platform browser"));
    m_tabWidget->addTab(pages[1], tr("Local VDS file"));
    m_tabWidget->addTab(pages[2], tr("Cloud VDS file"));

    layout->addWidget(m_tabWidget, 0, 0, 1, 2);
    layout->addWidget(m_statusLabel, 1, 0, Qt::AlignLeft);
    layout->addWidget(help, 1, 1, Qt::AlignRight);
    setLayout(layout);

    for (FastWidget* page : pages) {
        connect(page, &FastWidget::addToExtraDataManager, this, &FastTabWidget::addToExtraDataManager);
        connect(page, &FastWidget::removeVdsFileFromProject, this, &FastTabWidget::removeVdsFileFromProject);
        connect(this, &FastTabWidget::fastConnected, page, &FastWidget::setConnectedToFast);
    }

    auto* watcher = new QFileSystemWatcher(QStringList{projectPath}, this);
    connect(watcher, &QFileSystemWatcher::directoryChanged, this, &FastTabWidget::updateProjectBrowser);

    // The worker ends by itself once asked to stop; see the destructor. Its results reach the
    // panel queued, and Qt drops those still queued when the panel goes.
    m_worker = std::make_shared<CheckConnectionToFastWorker>(fast);
    connect(m_worker.get(), &CheckConnectionToFastWorker::workFinished, this, &FastTabWidget::updateStatus);
    // Run and deleted on a thread of the library's, which has no event loop: it belongs to none.
    m_worker->moveToThread(nullptr);
    startInBackground([worker = m_worker] { worker->run(); });
}

FastTabWidget::~FastTabWidget()
{
    m_worker->stop();
}

void FastTabWidget::fillTrees(const QSet<QString>& localProjectFiles, const QSet<QString>& cloudProjectFiles)
{
    for (int i = 0; i < m_tabWidget->count(); ++i) {
        auto* page = dynamic_cast<VdsWidget*>(m_tabWidget->widget(i));
        if (!page)
            continue;
        if (page->getType() == VdsWidget::LOCAL_FILE)
            page->init(localProjectFiles);
        else if (page->getType() == VdsWidget::CLOUD_URL)
            page->init(cloudProjectFiles);
    }
}

void FastTabWidget::clearTrees()
{
    for (int i = 0; i < m_tabWidget->count(); ++i) {
        if (auto* page = dynamic_cast<VdsWidget*>(m_tabWidget->widget(i)))
            page->clear();
    }
}

void FastTabWidget::setTabIcons(const QList<QPixmap>& icons) const
{
    for (int i = 0; i < icons.size(); ++i)
        m_tabWidget->setTabIcon(i, QIcon(icons[i]));
}

QSize FastTabWidget::sizeHint() const
{
    QSize hint = QWidget::sizeHint();
    // A tab widget that may scroll its tabs asks for at most 200 pixels of them.
    const QMargins margins = layout()->contentsMargins();
    const int frame = 2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, m_tabWidget);
    const int tabs = m_tabWidget->tabBar()->sizeHint().width() + frame + margins.left() + margins.right();
    hint.setWidth(std::max(hint.width(), tabs));
    return hint;
}

void FastTabWidget::closeEvent(QCloseEvent* event)
{
    // Closing the panel closes its dock or window with it.
    if (parentWidget())
        parentWidget()->close();
    event->accept();
}

void FastTabWidget::updateStatus(bool serviceAvailable, bool korvanePluginAvailable, const QString& version)
{
    const QString status = !serviceAvailable ? tr("Not connected to Bluware FAST™")
                           : korvanePluginAvailable
                               ? tr("Connected to Bluware FAST™ %1").arg(version)
                               : tr("Connected to Bluware FAST™ %1 but Korvane plugin is not available").arg(version);
    if (m_statusLabel->text() != status)
        m_statusLabel->setText(status);

    const bool connected = serviceAvailable && korvanePluginAvailable;
    if (connected == m_connected)
        return;
    m_connected = connected;
    Q_EMIT fastConnected(connected);
}

} // namespace fast
