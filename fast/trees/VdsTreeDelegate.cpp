#include <fast/trees/VdsTreeDelegate.h>

#include <fast/trees/TreeRoles.h>
#include <fast/trees/VdsTreeModel.h>

#include <QSortFilterProxyModel>

namespace fast {

VdsTreeDelegate::VdsTreeDelegate(QSortFilterProxyModel* proxyModel, QObject* parent)
    : FastTreeDelegate(proxyModel, parent)
{
}

void VdsTreeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (!qobject_cast<VdsTreeModel*>(proxyModel()->sourceModel()))
        return;
    if (index.column() != 2) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QModelIndex source = proxyModel()->mapToSource(index);
    const bool action = source.sibling(source.row(), 2).data(ActionRole).toBool();
    paintIcon(painter, option, index, action ? QStringLiteral("delete24") : QString());
}

} // namespace fast
