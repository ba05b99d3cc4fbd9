#pragma once

#include <kvWidgets/kvwidgets_export.h>

#include <QHeaderView>
#include <QPixmap>
#include <QPointer>

class QVBoxLayout;

namespace kvWidgets {

// A header whose sections carry a filter icon at their right end. The icon shows on the section
// under the mouse, and stays, highlighted, on sections whose filter hides something. Clicking it
// opens a pop-up under the section that subclasses fill with their filter's controls; a click
// elsewhere on the section still sorts.
class KVWIDGETS_EXPORT HeaderView : public QHeaderView
{
    Q_OBJECT

public:
    explicit HeaderView(Qt::Orientation orientation, QWidget* parent = nullptr);

    // A frame that pops up (Qt::Popup, parented to this header, deleted when closed) with a
    // QVBoxLayout. Subclasses wanting another frame return one with such a layout.
    virtual QWidget* createPopupWidget(int logicalIndex);
    // Adds the section's filter controls to the pop-up; the base adds nothing.
    virtual void fillPopup(QVBoxLayout* layout, int logicalIndex);
    // Whether the section's filter hides anything, which keeps its icon highlighted.
    virtual bool isFilterActive(int logicalIndex);

    // Replaces any open pop-up with a new one for the section, shown just under it, left edges
    // aligned. Does nothing for an index that is out of range or hidden.
    void showSortPopup(int logicalIndex);
    // The open pop-up, or null.
    QWidget* popupWidget() const;

    // Where the filter icon goes in a section: a square at the right end, vertically centred,
    // empty when the section is too small for one.
    QRect getDrawingRect(const QRect& sectionRect) const;
    // The filter icon drawn from the current palette: muted, or in the highlight colour.
    QPixmap getFilterPixmap(bool highlighted) const;
    // The logical section under the mouse, -1 when there is none.
    int getHoverIndex() const;

protected:
    // Whether the section shows the icon and opens the pop-up from it; every section does here.
    // A subclass that draws and opens its filter itself says false.
    virtual bool hasFilter(int logicalIndex) const;

    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sectionSizeFromContents(int logicalIndex) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    QRect sectionViewportRect(int logicalIndex) const;
    void setHoverIndex(int logicalIndex);
    int iconSize() const;
    int iconMargin() const;

    QPointer<QWidget> m_popup;
    int m_hoverIndex = -1;

    // The icons are redrawn only when what they are drawn from changes.
    mutable qint64 m_pixmapPaletteKey = -1;
    mutable int m_pixmapColorGroup = -1;
    mutable qreal m_pixmapRatio = 0;
    mutable QPixmap m_plainPixmap;
    mutable QPixmap m_highlightedPixmap;
};

} // namespace kvWidgets
