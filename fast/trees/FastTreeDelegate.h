#pragma once

#include <fast/fastpanel_export.h>

#include <QPersistentModelIndex>
#include <QStyledItemDelegate>

class QSortFilterProxyModel;

namespace fast {

// The common part of the row delegates: 30-pixel rows, and the cell under the mouse, whose
// icon is drawn opaque while every other icon is drawn at half opacity.
class FASTPANEL_EXPORT FastTreeDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    FastTreeDelegate(QSortFilterProxyModel* proxyModel, QObject* parent = nullptr);

    // A proxy index; invalid when the mouse is over no cell.
    QModelIndex hoveredIndex() const;
    void setHoveredIndex(const QModelIndex& index);
    QSortFilterProxyModel* proxyModel() const { return m_proxyModel; }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    // A cell's own tool tip; else, for a text its column cuts short, the whole text.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

protected:
    // Draws the panel's icon of that name alone, centred in the cell: no text, background or
    // selection; nothing for an empty name. The image suits the row's palette and the pixel
    // density painted on, and is loaded from the resources at every paint.
    void paintIcon(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                   const QString& icon) const;

private:
    QPersistentModelIndex m_hoveredIndex;
    QSortFilterProxyModel* m_proxyModel;
};

} // namespace fast
