#include <fast/panel/FastWidget.h>

#include <fast/client/Fast.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/PanelMessages_p.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>

#include <osdu/HttpResponse.h>

#include <algorithm>

namespace fast {

FastWidget::FastWidget(std::shared_ptr<Fast> fast, QWidget* parent) : QWidget(parent), m_fast(std::move(fast))
{
    registerMetaTypes();
    qRegisterMetaType<fast::eVdsLocation>("fast::eVdsLocation");
}

FastWidget::~FastWidget() = default;

void FastWidget::setConnectedToFast(bool connected)
{
    if (m_treeView)
        m_treeView->setConnectedToFast(connected);
}

void FastWidget::connectTreeView()
{
    connect(m_treeView, qOverload<std::string, std::vector<VdsFile>>(&FastTreeView::unmountVds), this,
            &FastWidget::onUnmountVds, Qt::DirectConnection);
    connect(m_treeView, &FastTreeView::deleteFile, this, &FastWidget::onDeleteFile, Qt::DirectConnection);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, as the host's slot signature has it
void FastWidget::onUnmountVds(std::string vdsId, std::vector<VdsFile> fileList)
{
    // A volume FAST does not know has nothing to unmount; a DELETE without an id would name
    // the whole collection.
    if (vdsId.empty())
        return;
    bool answered = true;
    quietly([&] { answered = m_fast->unmountVds(vdsId, fileList); });
    if (!answered) {
        tellFastUnreachable();
        return;
    }
    forgetVolume(vdsId, fileList);
}

void FastWidget::forgetVolume(const std::string& vdsId, const std::vector<VdsFile>& fileList)
{
    auto* model = qobject_cast<FastTreeModel*>(m_treeView->sourceModel());
    if (!model)
        return;
    for (const VdsFile& file : fileList)
        Q_EMIT removeVdsFileFromProject(QString::fromStdString(file.fileName));
    model->vdsUnmounted(vdsId);
}

void FastWidget::tellFastUnreachable()
{
    warn(this, tr("Bluware FAST™ not reachable"), tr("Bluware FAST™ could not be reached: nothing was unmounted."));
}

void FastWidget::onDeleteFile(std::string vdsId, VdsFile& vdsFile)
{
    int status = -1;
    quietly([&] { status = m_fast->deleteFile(vdsFile.fileId)->getResponse(); });
    // An empty id asks nothing of FAST, which cannot have failed to answer.
    if (status == 0 && !vdsFile.fileId.empty()) {
        tellFastUnreachable();
        return;
    }
    auto* model = qobject_cast<FastTreeModel*>(m_treeView->sourceModel());
    if (!model)
        return;
    model->removeFile(vdsId, vdsFile);
    const QList<VdsModel> records = model->vdsList();
    const bool volumeNowEmpty = std::any_of(records.begin(), records.end(), [&vdsId](const VdsModel& record) {
        return record.vdsId == vdsId && record.files.empty();
    });
    if (volumeNowEmpty) {
        quietly([&] { m_fast->unmountVds(vdsId, {}); });
        model->vdsUnmounted(vdsId);
    }
    Q_EMIT removeVdsFileFromProject(QString::fromStdString(vdsFile.fileName));
}

void FastWidget::openMountDialog(const QString& projectPath, const VdsModel& vdsModel, const std::string& vdsId)
{
    const SubvolumeRange range = m_fast->getPluginDescription(Fast::kHostPlugin, vdsId);
    auto* dialog = new MountNewVolume(m_fast, vdsId, range, projectPath, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &MountNewVolume::vdsMounted, this, &FastWidget::onVdsMounted);
    // Nothing to tell the user of a cancelled first mount: the volume goes from the page whether
    // FAST heard of it or not.
    connect(dialog, &QDialog::finished, this, [this, vdsModel, vdsId](int result) {
        if (result != 0 || !vdsModel.files.empty() || vdsId.empty())
            return;
        quietly([&] { m_fast->unmountVds(vdsId, {}); });
        forgetVolume(vdsId, {});
    });
    dialog->setModal(true);
    dialog->show();
}

} // namespace fast
