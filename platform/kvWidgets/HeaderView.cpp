#include <kvWidgets/HeaderView.h>

#include <QFrame>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QVBoxLayout>

#include <iterator>

namespace kvWidgets {

namespace {

// Opacity of the icon on sections whose filter is idle: present, but quieter than the label.
constexpr qreal MutedOpacity = 0.6;

// A funnel on a 16-unit grid, scaled to the requested size.
QPixmap drawFunnel(int size, qreal ratio, const QColor& colour, qreal opacity)
{
    QPixmap pixmap(QSize(size, size) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 16.0, size / 16.0);
    painter.setOpacity(opacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    const QPointF funnel[] = {{1.5, 2.5}, {14.5, 2.5}, {9.5, 8.5}, {9.5, 14.0}, {6.5, 12.5}, {6.5, 8.5}};
    painter.drawPolygon(funnel, int(std::size(funnel)));
    return pixmap;
}

} // namespace

HeaderView::HeaderView(Qt::Orientation orientation, QWidget* parent) : QHeaderView(orientation, parent)
{
    // The hovered section shows its icon, which needs moves without a button held.
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    // Views leave a header they are given as it is, and this one is made for sorting.
    setSectionsClickable(true);
}

QWidget* HeaderView::createPopupWidget(int /*logicalIndex*/)
{
    // Frameless as well, since some platforms otherwise offset the frame by a decoration margin.
    auto* popup = new QFrame(this, Qt::Popup | Qt::FramelessWindowHint);
    popup->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    popup->setAttribute(Qt::WA_DeleteOnClose);
    new QVBoxLayout(popup);
    return popup;
}

void HeaderView::fillPopup(QVBoxLayout* /*layout*/, int /*logicalIndex*/)
{
}

bool HeaderView::isFilterActive(int /*logicalIndex*/)
{
    return false;
}

void HeaderView::showSortPopup(int logicalIndex)
{
    if (logicalIndex < 0 || logicalIndex >= count() || isSectionHidden(logicalIndex))
        return;
    if (m_popup)
        m_popup->close();

    QWidget* popup = createPopupWidget(logicalIndex);
    if (!popup)
        return;
    if (!popup->layout())
        new QVBoxLayout(popup);
    auto* layout = qobject_cast<QVBoxLayout*>(popup->layout());
    if (!layout) {
        qWarning("HeaderView: a filter pop-up needs a QVBoxLayout");
        popup->deleteLater();
        return;
    }
    fillPopup(layout, logicalIndex);
    popup->adjustSize();

    const QRect section = sectionViewportRect(logicalIndex);
    QPoint pos = viewport()->mapToGlobal(QPoint(section.left(), section.bottom() + 1));
    // Kept on the screen: shifted left at the right edge, flipped above the header at the bottom.
    const QRect available = screen()->availableGeometry();
    pos.setX(qMax(available.left(), qMin(pos.x(), available.right() + 1 - popup->width())));
    if (pos.y() + popup->height() > available.bottom() + 1)
        pos.setY(viewport()->mapToGlobal(section.topLeft()).y() - popup->height());
    popup->move(pos);
    popup->show();
    m_popup = popup;
}

QWidget* HeaderView::popupWidget() const
{
    return m_popup;
}

QRect HeaderView::getDrawingRect(const QRect& sectionRect) const
{
    const int margin = iconMargin();
    const int side = qMin(iconSize(), qMin(sectionRect.width(), sectionRect.height()) - 2 * margin);
    if (side <= 0)
        return QRect();
    return QRect(sectionRect.right() + 1 - margin - side, sectionRect.top() + (sectionRect.height() - side) / 2, side,
                 side);
}

QPixmap HeaderView::getFilterPixmap(bool highlighted) const
{
    const QPalette& pal = palette();
    const qreal ratio = devicePixelRatioF();
    if (pal.cacheKey() != m_pixmapPaletteKey || pal.currentColorGroup() != m_pixmapColorGroup
        || !qFuzzyCompare(ratio, m_pixmapRatio)) {
        m_pixmapPaletteKey = pal.cacheKey();
        m_pixmapColorGroup = pal.currentColorGroup();
        m_pixmapRatio = ratio;
        m_plainPixmap = drawFunnel(iconSize(), ratio, pal.color(QPalette::ButtonText), MutedOpacity);
        m_highlightedPixmap = drawFunnel(iconSize(), ratio, pal.color(QPalette::Highlight), 1.0);
    }
    return highlighted ? m_highlightedPixmap : m_plainPixmap;
}

int HeaderView::getHoverIndex() const
{
    return m_hoverIndex;
}

bool HeaderView::hasFilter(int /*logicalIndex*/) const
{
    return true;
}

void HeaderView::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    const QRect iconRect = hasFilter(logicalIndex) ? getDrawingRect(rect) : QRect();
    if (iconRect.isEmpty()) {
        // Restored, so that a subclass can still draw over the section afterwards.
        painter->save();
        QHeaderView::paintSection(painter, rect, logicalIndex);
        painter->restore();
        return;
    }

    // The label and sort arrow keep to the left of the icon, whether the icon shows or not, so
    // nothing shifts as the mouse passes; the section's face still spans its full width.
    const QRect labelRect(rect.left(), rect.top(), iconRect.left() - rect.left(), rect.height());
    // The base version leaves the painter clipped to the rect it was given.
    painter->save();
    QHeaderView::paintSection(painter, labelRect, logicalIndex);
    painter->restore();

    QStyleOptionHeader face;
    initStyleOption(&face);
    face.rect = rect;
    face.section = logicalIndex;
    const int visual = visualIndex(logicalIndex);
    const bool first = visual == 0;
    const bool last = visual == count() - 1;
    face.position = first && last ? QStyleOptionHeader::OnlyOneSection
                    : first       ? QStyleOptionHeader::Beginning
                    : last        ? QStyleOptionHeader::End
                                  : QStyleOptionHeader::Middle;
    if (logicalIndex == m_hoverIndex && isEnabled())
        face.state |= QStyle::State_MouseOver;
    // Painted over the narrowed section's right border as well, leaving one border per section.
    painter->save();
    painter->setClipRect(QRect(QPoint(labelRect.right() - 1, rect.top()), rect.bottomRight()), Qt::IntersectClip);
    style()->drawControl(QStyle::CE_HeaderSection, &face, painter, this);
    painter->restore();

    // Asked through a non-const hook because subclasses may consult their models.
    const bool active = const_cast<HeaderView*>(this)->isFilterActive(logicalIndex);
    if (active || logicalIndex == m_hoverIndex)
        painter->drawPixmap(iconRect, getFilterPixmap(active));
}

QSize HeaderView::sectionSizeFromContents(int logicalIndex) const
{
    QSize size = QHeaderView::sectionSizeFromContents(logicalIndex);
    if (!hasFilter(logicalIndex))
        return size;
    const int room = iconSize() + 2 * iconMargin();
    size.rwidth() += room;
    size.setHeight(qMax(size.height(), room));
    return size;
}

void HeaderView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        const int logicalIndex = logicalIndexAt(event->pos());
        if (logicalIndex >= 0 && hasFilter(logicalIndex)
            && getDrawingRect(sectionViewportRect(logicalIndex)).contains(event->pos())) {
            showSortPopup(logicalIndex);
            return;
        }
    }
    QHeaderView::mousePressEvent(event);
}

void HeaderView::mouseMoveEvent(QMouseEvent* event)
{
    setHoverIndex(logicalIndexAt(event->pos()));
    QHeaderView::mouseMoveEvent(event);
}

// Leaving reaches the viewport, not the header, and the viewport's events come through here.
bool HeaderView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::Leave)
        setHoverIndex(-1);
    return QHeaderView::viewportEvent(event);
}

QRect HeaderView::sectionViewportRect(int logicalIndex) const
{
    const int position = sectionViewportPosition(logicalIndex);
    const int size = sectionSize(logicalIndex);
    if (orientation() == Qt::Horizontal)
        return QRect(position, 0, size, viewport()->height());
    return QRect(0, position, viewport()->width(), size);
}

void HeaderView::setHoverIndex(int logicalIndex)
{
    if (logicalIndex == m_hoverIndex)
        return;
    const int previous = m_hoverIndex;
    m_hoverIndex = logicalIndex;
    if (previous >= 0)
        updateSection(previous);
    if (logicalIndex >= 0)
        updateSection(logicalIndex);
}

int HeaderView::iconSize() const
{
    return style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
}

int HeaderView::iconMargin() const
{
    return style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, this);
}

} // namespace kvWidgets
