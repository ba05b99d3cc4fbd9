#pragma once

#include <fast/trees/FastTreeDelegate.h>

namespace fast {

// Draws the VDS tree's column 2: the unmount icon on volume rows, the delete icon on file rows.
class FASTPANEL_EXPORT VdsTreeDelegate : public FastTreeDelegate
{
    Q_OBJECT

public:
    VdsTreeDelegate(QSortFilterProxyModel* proxyModel, QObject* parent = nullptr);

    // Over any model but a VdsTreeModel it draws nothing at all, not even the default cell.
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace fast
