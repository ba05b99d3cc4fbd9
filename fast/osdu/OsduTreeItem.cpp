#include <fast/osdu/OsduTreeItem.h>

#include <fast/trees/TreeRoles.h>

namespace fast {

OsduTreeItem::OsduTreeItem(const QString& text, int datasetIndex) : OsduTreeItem(text, datasetIndex, -1)
{
}

OsduTreeItem::OsduTreeItem(const QString& text, int datasetIndex, int fileIndex) : QStandardItem(text)
{
    setEditable(false);
    setSelectable(false);
    setData(datasetIndex, VdsIndexRole);
    setData(fileIndex, FileIndexRole);
}

void OsduTreeItem::setAction(const QString& description)
{
    setData(true, ActionRole);
    if (description.isEmpty())
        return;
    setData(description, Qt::ToolTipRole);
    setData(description, Qt::AccessibleTextRole);
}

} // namespace fast
