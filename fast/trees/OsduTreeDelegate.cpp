#include <fast/trees/OsduTreeDelegate.h>

#include <fast/osdu/OsduTreeModel.h>
#include <fast/trees/TreeRoles.h>

#include <QSortFilterProxyModel>

namespace fast {

OsduTreeDelegate::OsduTreeDelegate(QSortFilterProxyModel* proxyModel, QObject* parent)
    : FastTreeDelegate(proxyModel, parent)
{
}

void OsduTreeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const auto* model = qobject_cast<OsduTreeModel*>(proxyModel()->sourceModel());
    if (!model)
        return;
    if (index.column() != 2 && index.column() != 3) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QModelIndex source = proxyModel()->mapToSource(index);
    const std::optional<VdsModel> dataset = model->vdsAt(source.data(VdsIndexRole).toInt());
    const bool registered = dataset && !dataset->vdsId.empty();
    const bool mountFlag = source.sibling(source.row(), 2).data(ActionRole).toBool();
    const bool deleteFlag = source.sibling(source.row(), 3).data(ActionRole).toBool() && registered;

    QString icon;
    if (index.column() == 2 && mountFlag)
        icon = registered ? QStringLiteral("down_ko") : QStringLiteral("down_ok");
    else if (index.column() == 3 && deleteFlag)
        icon = QStringLiteral("delete24");
    paintIcon(painter, option, index, icon);
}

} // namespace fast
