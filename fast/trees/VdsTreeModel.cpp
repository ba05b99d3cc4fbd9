#include <fast/trees/VdsTreeModel.h>

#include <fast/client/Utf8Text_p.h>
#include <fast/osdu/OsduTreeItem.h>

namespace fast {

VdsTreeModel::VdsTreeModel(QObject* parent) : FastTreeModel(parent)
{
    setHorizontalHeaderLabels({tr("Name"), tr("Data"), ""});
    setColumnCount(3);
}

void VdsTreeModel::clearRows()
{
    // Every top-level row: right after addVds the list is one ahead of the rows.
    removeRows(0, rowCount(), QModelIndex());
}

void VdsTreeModel::populate()
{
    // The labels are looked up once, not per volume.
    const QString filesLabel = filesRowText();
    const QString idLabel = tr("Id");
    const QString pathLabel = tr("Path");
    for (int i = 0; i < m_vdsList.size(); ++i) {
        const VdsModel& vds = m_vdsList.at(i);
        QList<QStandardItem*> vdsRow = makeRow({vds.name}, i);
        // Unregistered, the icon is drawn but does nothing: nothing to describe.
        static_cast<OsduTreeItem*>(vdsRow.last())->setAction(vds.vdsId.empty() ? QString() : unmountText(vds.name));
        QStandardItem* parent = vdsRow.first();

        if (!vds.files.empty()) {
            const QList<QStandardItem*> filesRow = makeRow({filesLabel}, i);
            appendChild(parent, filesRow);
            for (int k = 0; k < static_cast<int>(vds.files.size()); ++k) {
                const VdsFile& file = vds.files[static_cast<std::size_t>(k)];
                QList<QStandardItem*> fileRow = makeRow({text(file.fileName), text(file.fileId)}, i, k);
                static_cast<OsduTreeItem*>(fileRow.last())->setAction(deleteFileText(text(file.fileName)));
                appendChild(filesRow.first(), fileRow);
            }
        }
        if (!vds.vdsId.empty())
            appendChild(parent, makeRow({idLabel, text(vds.vdsId)}, i));
        if (!vds.url.empty())
            appendChild(parent, makeRow({pathLabel, text(vds.url)}, i));
        // Added whole: one insertion for the views instead of one per row.
        appendRow(vdsRow);
    }
}

void VdsTreeModel::vdsUnmounted(const std::string& vdsId)
{
    rebuildWithout(vdsId);
}

} // namespace fast
