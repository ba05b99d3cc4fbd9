#include <fast/osdu/OsduTreeModel.h>

#include <fast/osdu/OsduTreeItem.h>
#include <fast/trees/TreeRoles.h>

namespace fast {

OsduTreeModel::OsduTreeModel(QObject* parent) : FastTreeModel(parent)
{
    setHorizontalHeaderLabels({tr("Name"), tr("Data"), "", ""});
}

void OsduTreeModel::clearRows()
{
    removeRows(0, rowCount(), QModelIndex());
}

void OsduTreeModel::populate()
{
    clearRows();
    // The labels are looked up once, not per dataset.
    const QString filesLabel = filesRowText();
    const QString idLabel = tr("Id");
    const QString kindLabel = tr("Kind");
    for (int i = 0; i < m_vdsList.size(); ++i) {
        const VdsModel& dataset = m_vdsList.at(i);
        QList<QStandardItem*> top = makeRow({dataset.name, dataset.description}, i);
        static_cast<OsduTreeItem*>(top[2])->setAction(mountText(dataset.name));
        // Unmounting is for datasets FAST knows; the icon shows only then.
        static_cast<OsduTreeItem*>(top[3])->setAction(dataset.vdsId.empty() ? QString() : unmountText(dataset.name));

        const QList<QStandardItem*> filesRow = makeRow({filesLabel}, i);
        appendChild(top.first(), filesRow);
        for (int k = 0; k < static_cast<int>(dataset.files.size()); ++k) {
            const VdsFile& file = dataset.files[static_cast<std::size_t>(k)];
            QList<QStandardItem*> fileRow =
                makeRow({QString::fromStdString(file.fileName), QString::fromStdString(file.fileId)}, i, k);
            // The mount cell of a file row mounts its dataset again.
            static_cast<OsduTreeItem*>(fileRow[2])->setAction(mountText(dataset.name));
            // Only the name, id and action cells stand for the file.
            fileRow[3]->setData(-1, FileIndexRole);
            appendChild(filesRow.first(), fileRow);
        }
        appendChild(top.first(), makeRow({idLabel, dataset.recordId}, i));
        appendChild(top.first(), makeRow({kindLabel, dataset.kind}, i));
        // Added whole: one insertion for the views instead of one per row.
        appendRow(top);
    }
}

void OsduTreeModel::vdsUnmounted(const std::string& vdsId)
{
    const int index = indexOf(vdsId);
    if (vdsId.empty() || index < 0)
        return;
    m_vdsList[index].vdsId.clear();
    m_vdsList[index].files.clear();
    populate();
}

} // namespace fast
