#pragma once

#include <fast/trees/FastTreeDelegate.h>

namespace fast {

// Draws the OSDU tree's icons: in column 2 the mount state (can be mounted, or known to FAST),
// in column 3 the unmount or delete icon of datasets known to FAST.
class FASTPANEL_EXPORT OsduTreeDelegate : public FastTreeDelegate
{
    Q_OBJECT

public:
    OsduTreeDelegate(QSortFilterProxyModel* proxyModel, QObject* parent = nullptr);

    // Over any model but an OsduTreeModel it draws nothing at all.
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace fast
