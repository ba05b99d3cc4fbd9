#include <fast/trees/VdsTreeView.h>

#include <fast/trees/VdsTreeModel.h>

namespace fast {

VdsTreeView::VdsTreeView(QWidget* parent) : FastTreeView(parent)
{
    setSourceTreeModel(new VdsTreeModel(this));
}

void VdsTreeView::refresh()
{
    model()->clearRows();
    FastTreeView::refresh();
}

void VdsTreeView::onActionClicked(const VdsModel& vds, int fileIndex, const QModelIndex& sourceIndex)
{
    if (sourceIndex.column() == 2)
        emitUnmountOrDelete(vds, fileIndex);
}

} // namespace fast
