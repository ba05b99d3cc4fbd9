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

void OsduTreeItem::setAction()
{
    setData(true, ActionRole);
}

} // namespace fast
