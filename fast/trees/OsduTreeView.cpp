#include <fast/trees/OsduTreeView.h>

#include <fast/osdu/OsduTreeModel.h>
#include <fast/trees/FastHeaderView.h>

namespace fast {

OsduTreeView::OsduTreeView(QWidget* parent) : FastTreeView(parent)
{
    setSourceTreeModel(new OsduTreeModel(this));
    static_cast<FastHeaderView*>(header())->setRegistrationFilterEnabled(true);
}

void OsduTreeView::onActionClicked(const VdsModel& vds, int fileIndex, const QModelIndex& sourceIndex)
{
    if (sourceIndex.column() == 2)
        Q_EMIT mountVds(vds);
    else if (sourceIndex.column() == 3)
        emitUnmountOrDelete(vds, fileIndex);
}

} // namespace fast
