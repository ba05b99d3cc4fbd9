#pragma once

#include <kvWidgets/kvwidgets_export.h>

#include <QWidget>

class QStyleOptionSlider;

namespace kvWidgets {

// A horizontal slider with a lower and an upper handle on one groove, for picking a range.
// The handles never cross: a value past the other handle stops at it. A new range clamps both
// values the way QSlider clamps its one. Starts on 0..99 with the handles at the two ends.
// The keys move the focused handle, which is the one last pressed (the lower one at first).
class KVWIDGETS_EXPORT DoubleSlider : public QWidget
{
    Q_OBJECT

public:
    explicit DoubleSlider(QWidget* parent = nullptr);

    void setMinimum(int minimum);
    void setMaximum(int maximum);
    int minimum() const;
    int maximum() const;

    void setSingleStep(int step);
    int singleStep() const;

    void setLowerValue(int value);
    void setUpperValue(int value);
    int lowerValue() const;
    int upperValue() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void lowerValueChanged(int value);
    void upperValueChanged(int value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    enum class Handle { None, Lower, Upper };

    void initStyleOption(QStyleOptionSlider* option, int position) const;
    QRect handleRect(Handle handle) const;
    Handle handleAt(const QPoint& pos) const;
    int valueAt(int handleLeft) const;
    int value(Handle handle) const;
    void setValue(Handle handle, int value);
    void setRange(int minimum, int maximum);
    void drawHandle(QPainter* painter, Handle handle) const;

    int m_minimum = 0;
    int m_maximum = 99;
    int m_singleStep = 1;
    int m_lower = 0;
    int m_upper = 99;

    Handle m_focusHandle = Handle::Lower;
    Handle m_pressedHandle = Handle::None;
    Handle m_hoveredHandle = Handle::None;
    // Both handles sat under the press; the direction of the first move picks one.
    bool m_pressUndecided = false;
    int m_pressX = 0;
    // Where in the handle it was grabbed, so the handle does not jump under the cursor.
    int m_grabOffset = 0;
};

} // namespace kvWidgets
