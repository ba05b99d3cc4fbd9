#include <fast/trees/FastTreeDelegate.h>

#include <QPainter>
#include <QSortFilterProxyModel>

namespace fast {

namespace {

constexpr int kRowHeight = 30;
constexpr int kIconColumnWidth = 30;

} // namespace

FastTreeDelegate::FastTreeDelegate(QSortFilterProxyModel* proxyModel, QObject* parent)
    : QStyledItemDelegate(parent), m_proxyModel(proxyModel)
{
}

QModelIndex FastTreeDelegate::hoveredIndex() const
{
    return m_hoveredIndex;
}

void FastTreeDelegate::setHoveredIndex(const QModelIndex& index)
{
    m_hoveredIndex = index;
}

QSize FastTreeDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QSize hint = QStyledItemDelegate::sizeHint(option, index);
    hint.setHeight(kRowHeight);
    if (index.column() == 2)
        hint.setWidth(kIconColumnWidth);
    return hint;
}

void FastTreeDelegate::paintIcon(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                                 const QPixmap& pixmap) const
{
    painter->save();
    QStyleOptionViewItem cell(option);
    initStyleOption(&cell, index);
    cell.icon = QIcon();
    if (index != m_hoveredIndex)
        painter->setOpacity(0.5);
    if (!pixmap.isNull()) {
        const QRect& r = option.rect;
        const QPoint topLeft(r.left() + (r.width() - pixmap.width()) / 2, r.top() + (r.height() - pixmap.height()) / 2);
        painter->drawPixmap(topLeft, pixmap);
    }
    painter->restore();
}

} // namespace fast
