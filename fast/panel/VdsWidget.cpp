#include <fast/panel/VdsWidget.h>

#include <fast/client/Fast.h>
#include <fast/client/Utf8Text_p.h>
#include <fast/client/VdsDescriptorParser.h>
#include <fast/client/VirtualDrive.h>
#include <fast/panel/ControlNames.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/PanelMessages_p.h>
#include <fast/panel/VdsRegistration_p.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/VdsTreeDelegate.h>
#include <fast/trees/VdsTreeModel.h>
#include <fast/trees/VdsTreeView.h>

#include <korvane/IconXPMHandler.h>
#include <kvWidgets/HelpToolTip.h>
#include <osdu/HttpResponse.h>

#include <Poco/JSON/JSONException.h>

#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QUrl>

#include <algorithm>

namespace fast {

namespace {

// Where the host is told that a page's volumes come from.
eVdsLocation locationOf(VdsWidget::eWidgetType page)
{
    return page == VdsWidget::LOCAL_FILE ? eVdsLocation::LOCAL_FILE : eVdsLocation::CLOUD_URL;
}

// Call-site numbers carried by the trace lines; the host's log readers rely on them.
enum TraceSite : int {
    MountJsonSite = 261,
    MountSite = 277,
    InitJsonSite = 365,
    InitSite = 372,
};

const char* const kLocalHelp = QT_TRANSLATE_NOOP(
    "fast::VdsWidget",
    "Once FAST™ service is running, upload the local VDS volume:<br>&nbsp;- Click on <img "
    "src=':/light/projectopen24.png' width=\"12\" height=\"12\"> Open VDS button</br><br>&nbsp;- Select the .vds "
    "file and open it</br><br>&nbsp;- In the new dialog to mount a VDS, enter a file name</br><br>&nbsp;- Define a "
    "zone of interest if needed then Save.");
const char* const kCloudHelp = QT_TRANSLATE_NOOP(
    "fast::VdsWidget",
    "Once FAST™ service is running, upload the VDS volume from the cloud:<br>&nbsp;- Paste the URL of the "
    "VDS</br><br>&nbsp;- Click on <img src=':/light/down_ko.png' width=\"12\" height=\"12\"> Mount VDS "
    "button</br><br>&nbsp;- In the new dialog to mount a VDS, enter a file name</br><br>&nbsp;- Define a zone of "
    "interest if needed then Save.");

QString pathWithoutSlashes(const QString& url)
{
    return QUrl(url).path(QUrl::FullyDecoded).remove(QLatin1Char('/'));
}

} // namespace

VdsWidget::VdsWidget(eWidgetType type, const std::shared_ptr<Fast>& fast, const QString& projectPath, QWidget* parent)
    : FastWidget(fast, parent), m_type(type)
{
    auto* layout = new QGridLayout(this);
    m_lineEdit = new QLineEdit(this);
    m_lineEdit->setObjectName(kVdsPathField);
    m_actionButton = new QPushButton(QString(), this);
    m_actionButton->setObjectName(kVdsActionButton);
    m_actionButton->setFixedSize(24, 24);
    m_actionButton->setEnabled(false);

    QString help;
    if (type == LOCAL_FILE) {
        m_lineEdit->setReadOnly(true);
        m_actionButton->setIcon(QIcon(*iconHandler->getPixmap("projectopen24")));
        m_actionButton->setToolTip(tr("Open VDS"));
        connect(m_actionButton, &QPushButton::clicked, this, [this, projectPath] { onBrowseClicked(projectPath); });
        help = tr(kLocalHelp);
    } else if (type == CLOUD_URL) {
        m_actionButton->setIcon(QIcon(*iconHandler->getPixmap("down_ko")));
        m_actionButton->setToolTip(tr("Mount VDS"));
        connect(m_actionButton, &QPushButton::clicked, this, [this, projectPath] { onDownloadClicked(projectPath); });
        help = tr(kCloudHelp);
    }

    auto* tree = new VdsTreeView(this);
    tree->setObjectName(kVdsTree);
    tree->setItemDelegate(new VdsTreeDelegate(tree->proxyModel(), tree));
    auto* helpToolTip = new kvWidgets::HelpToolTip(*iconHandler->getPixmap("help24"), help, this);

    layout->addWidget(m_lineEdit, 0, 0, 1, 2);
    layout->addWidget(m_actionButton, 0, 2);
    layout->addWidget(helpToolTip, 0, 3);
    layout->addWidget(tree, 1, 0, 1, 4);

    m_treeView = tree;
    connectTreeView();
    connect(tree, &FastTreeView::mountVds, this,
            [this, projectPath](const VdsModel& vdsModel) { onMountVds(projectPath, vdsModel); });
}

void VdsWidget::init(const QSet<QString>& projectFiles)
{
    clear();
    VdsTreeModel* model = vdsModel();
    if (!model)
        return;
    try {
        const auto files = m_fast->getFileList();
        const auto volumes = m_fast->getVdsList();
        // A volume is listed when one of its files is in the project, by file name, and no volume
        // listed before it has the same display name. Each name is worked out once: the project
        // may hold thousands of files, and this runs on the host's GUI thread.
        QSet<QString> projectFileNames;
        for (const QString& path : projectFiles)
            projectFileNames.insert(pathKey(QFileInfo(path).fileName()));
        QSet<QString> listedNames;
        for (const VdsInfo& info : parseVdsInfos(volumes->getMessage(), files->getMessage())) {
            const bool inProject = std::any_of(info.files.begin(), info.files.end(), [&](const VdsFile& file) {
                return projectFileNames.contains(pathKey(text(file.fileName)));
            });
            if (!inProject)
                continue;
            const QString name = displayName(info.url);
            if (listedNames.contains(name))
                continue;
            listedNames.insert(name);
            model->addVds(VdsModel({}, name, {}, {}, info.vdsId, info.url, info.files));
        }
        m_treeView->refresh();
    } catch (const Poco::JSON::JSONException& failure) {
        trace(QString("FAST VDS init JSONException %1").arg(InitJsonSite));
        reportListingFailure(this, failure);
    } catch (const std::exception& failure) {
        trace(QString("FAST VDS init exception %1").arg(InitSite));
        reportListingFailure(this, failure);
    }
}

void VdsWidget::clear()
{
    m_treeView->clear();
}

void VdsWidget::setConnectedToFast(bool connected)
{
    FastWidget::setConnectedToFast(connected);
    m_actionButton->setEnabled(connected);
}

void VdsWidget::onBrowseClicked(const QString& projectPath)
{
    if (!vdsModel())
        return;
    const QString path = QFileDialog::getOpenFileName(this, tr("Select VDS file"), "C:", "*.vds");
    if (path.isEmpty())
        return;
    bool recordAdded = false;
    const VdsModel record = recordFor(path.toStdString(), QFileInfo(path).fileName(), recordAdded);
    mount(projectPath, record, recordAdded);
}

void VdsWidget::onDownloadClicked(const QString& projectPath)
{
    if (!vdsModel())
        return;
    const QString url = m_lineEdit->text();
    if (url.isEmpty())
        return;
    bool recordAdded = false;
    const VdsModel record = recordFor(url.toStdString(), pathWithoutSlashes(url), recordAdded);
    mount(projectPath, record, recordAdded);
}

VdsModel VdsWidget::recordFor(const std::string& url, const QString& newName, bool& recordAdded)
{
    VdsTreeModel* model = vdsModel();
    for (const VdsModel& record : model->vdsList()) {
        if (samePath(text(record.url), text(url)))
            return record;
    }
    m_lineEdit->setText(text(url));
    VdsModel record({}, newName, {}, {}, {}, url, {});
    model->addVds(record);
    recordAdded = true;
    m_treeView->refresh();
    return record;
}

void VdsWidget::onMountVds(const QString& projectPath, const VdsModel& vdsModel)
{
    mount(projectPath, vdsModel, false);
}

void VdsWidget::mount(const QString& projectPath, const VdsModel& vdsModel, bool recordAdded)
{
    if (!this->vdsModel())
        return;
    std::string vdsId = vdsModel.vdsId;
    try {
        if (vdsId.empty())
            vdsId = registeredId(vdsModel);
        if (vdsId.empty())
            return;
        openMountDialog(projectPath, vdsModel, vdsId);
    } catch (const Poco::JSON::JSONException& failure) {
        trace(QString("FAST VDS onMountVds JSONException %1").arg(MountJsonSite));
        abandonMount(vdsModel, vdsId, recordAdded, failure, true);
    } catch (const std::exception& failure) {
        trace(QString("FAST VDS onMountVds exception %1").arg(MountSite));
        abandonMount(vdsModel, vdsId, recordAdded, failure, false);
    }
}

std::string VdsWidget::registeredId(const VdsModel& vdsModel)
{
    if (const std::optional<VdsInfo> known = m_fast->findVdsByUrl(vdsModel.url)) {
        noteAlreadyRegistered(vdsModel.url, known->vdsId);
        storeId(vdsModel.url, known->vdsId);
        return known->vdsId;
    }
    std::string vdsId = registerVdsInFast(*m_fast, vdsModel.url);
    if (vdsId.empty()) {
        warnRegistrationFailed(this);
        return {};
    }
    storeId(vdsModel.url, vdsId);
    return vdsId;
}

void VdsWidget::storeId(const std::string& url, const std::string& vdsId)
{
    vdsModel()->setVdsIdForUrl(url, vdsId);
}

void VdsWidget::abandonMount(const VdsModel& vdsModel, const std::string& vdsId, bool recordAdded,
                             const std::exception& failure, bool badJson)
{
    const std::string& url = vdsModel.url;
    // Without an id the lookup itself failed: there is nothing to unregister, and a DELETE on
    // the bare collection must never reach FAST. Nor may another record without an id go,
    // such as one whose registration FAST refused earlier and that waits for a retry.
    if (!vdsId.empty()) {
        quietly([&] { m_fast->unmountVds(vdsId, {}); });
        this->vdsModel()->removeVdsRecord(vdsId);
    } else if (recordAdded) {
        this->vdsModel()->removeRecordForUrl(url);
    }
    m_treeView->refresh();
    const QString reason = badJson ? tr("Exception occurred while parsing JSON to get volume data from VDS")
                                   : tr("Exception occurred");
    error(tr("Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. %3: %4")
              .arg(text(url), text(vdsId), reason, exceptionText(failure)));
    warnMountFailed(this);
}

void VdsWidget::onVdsMounted(const std::string& vdsId, const std::string& fileId, const std::string& fileName)
{
    if (VdsTreeModel* model = vdsModel())
        model->addFile(vdsId, fileId, fileName);
    Q_EMIT addToExtraDataManager(text(fileName), locationOf(m_type));
    m_treeView->refresh();
}

VdsTreeModel* VdsWidget::vdsModel() const
{
    return qobject_cast<VdsTreeModel*>(m_treeView->sourceModel());
}

QString VdsWidget::displayName(const std::string& url) const
{
    return m_type == CLOUD_URL ? pathWithoutSlashes(text(url)) : QFileInfo(text(url)).baseName();
}

} // namespace fast
