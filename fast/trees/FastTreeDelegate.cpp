#include <fast/trees/FastTreeDelegate.h>

#include <fast/panel/PanelIcons_p.h>

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QSortFilterProxyModel>
#include <QStyle>
#include <QToolTip>

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

bool FastTreeDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                                 const QModelIndex& index)
{
    if (!event || !view || event->type() != QEvent::ToolTip || index.data(Qt::ToolTipRole).isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QStyleOptionViewItem cell(option);
    initStyleOption(&cell, index);
    const QWidget* widget = cell.widget ? cell.widget : view;
    const QRect textRect = widget->style()->subElementRect(QStyle::SE_ItemViewItemText, &cell, widget);
    if (cell.text.isEmpty() || cell.fontMetrics.horizontalAdvance(cell.text) <= textRect.width()) {
        QToolTip::hideText();
        return true;
    }
    QToolTip::showText(event->globalPos(), cell.text, view->viewport(), option.rect);
    return true;
}

void FastTreeDelegate::paintIcon(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                                 const QString& icon) const
{
    const QPixmap pixmap = icon.isEmpty() ? QPixmap()
                                          : panelIcon(icon, option.palette, painter->device()->devicePixelRatioF());
    painter->save();
    QStyleOptionViewItem cell(option);
    initStyleOption(&cell, index);
    cell.icon = QIcon();
    if (index != m_hoveredIndex)
        painter->setOpacity(0.5);
    if (!pixmap.isNull()) {
        const QRect& r = option.rect;
        const QSize size = (QSizeF(pixmap.size()) / pixmap.devicePixelRatioF()).toSize();
        const QPoint topLeft(r.left() + (r.width() - size.width()) / 2, r.top() + (r.height() - size.height()) / 2);
        painter->drawPixmap(topLeft, pixmap);
    }
    painter->restore();
}

} // namespace fast
