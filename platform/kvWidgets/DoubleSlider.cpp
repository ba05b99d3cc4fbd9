#include <kvWidgets/DoubleSlider.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStyleOptionSlider>

namespace kvWidgets {

namespace {

// What a horizontal QSlider asks for, so both kinds line up in a form.
constexpr int PreferredLength = 84;
constexpr int PageSteps = 10;

} // namespace

DoubleSlider::DoubleSlider(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed, QSizePolicy::Slider));
    // Hovered handles light up in most styles, which needs moves without a button held.
    setMouseTracking(true);
}

void DoubleSlider::setMinimum(int minimum)
{
    setRange(minimum, qMax(minimum, m_maximum));
}

void DoubleSlider::setMaximum(int maximum)
{
    setRange(qMin(m_minimum, maximum), maximum);
}

int DoubleSlider::minimum() const
{
    return m_minimum;
}

int DoubleSlider::maximum() const
{
    return m_maximum;
}

void DoubleSlider::setSingleStep(int step)
{
    m_singleStep = qAbs(step);
}

int DoubleSlider::singleStep() const
{
    return m_singleStep;
}

void DoubleSlider::setLowerValue(int value)
{
    setValue(Handle::Lower, value);
}

void DoubleSlider::setUpperValue(int value)
{
    setValue(Handle::Upper, value);
}

int DoubleSlider::lowerValue() const
{
    return m_lower;
}

int DoubleSlider::upperValue() const
{
    return m_upper;
}

QSize DoubleSlider::sizeHint() const
{
    ensurePolished();
    QStyleOptionSlider option;
    initStyleOption(&option, m_lower);
    const int thickness = style()->pixelMetric(QStyle::PM_SliderThickness, &option, this);
    return style()->sizeFromContents(QStyle::CT_Slider, &option, QSize(PreferredLength, thickness), this);
}

QSize DoubleSlider::minimumSizeHint() const
{
    QStyleOptionSlider option;
    initStyleOption(&option, m_lower);
    const int handleLength = style()->pixelMetric(QStyle::PM_SliderLength, &option, this);
    return QSize(2 * handleLength, sizeHint().height());
}

void DoubleSlider::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);

    // Drawn as if the value sat at the minimum: some styles shade the groove up to the handle,
    // which would contradict the span shaded below.
    QStyleOptionSlider groove;
    initStyleOption(&groove, m_minimum);
    groove.subControls = QStyle::SC_SliderGroove;
    style()->drawComplexControl(QStyle::CC_Slider, &groove, &painter, this);

    const QRect grooveRect = style()->subControlRect(QStyle::CC_Slider, &groove, QStyle::SC_SliderGroove, this);
    const int lowerCentre = handleRect(Handle::Lower).center().x();
    const int upperCentre = handleRect(Handle::Upper).center().x();
    // Some styles report the groove as tall as the handles; a thin band reads as a range in all.
    const int thickness = qMax(2, qMin(grooveRect.height() - 2, logicalDpiY() / 24));
    const QRect span(qMin(lowerCentre, upperCentre), grooveRect.center().y() - thickness / 2,
                     qAbs(upperCentre - lowerCentre), thickness);
    painter.fillRect(span, palette().color(QPalette::Highlight));

    // The focused handle on top, so the one the keys move is the one seen when they overlap.
    drawHandle(&painter, m_focusHandle == Handle::Lower ? Handle::Upper : Handle::Lower);
    drawHandle(&painter, m_focusHandle);

    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = handleRect(m_focusHandle);
        focus.backgroundColor = palette().color(backgroundRole());
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
}

void DoubleSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || m_maximum == m_minimum) {
        event->ignore();
        return;
    }
    const bool reversed = layoutDirection() == Qt::RightToLeft;
    const int x = event->pos().x();
    const QRect lowerRect = handleRect(Handle::Lower);
    const QRect upperRect = handleRect(Handle::Upper);
    const int lowerCentre = lowerRect.center().x();
    const int upperCentre = upperRect.center().x();

    Handle handle = Handle::None;
    if (lowerCentre == upperCentre) {
        if (lowerRect.contains(event->pos())) {
            m_pressUndecided = true;
            m_pressX = x;
            m_grabOffset = x - lowerRect.x();
            return;
        }
        handle = (x < lowerCentre) != reversed ? Handle::Lower : Handle::Upper;
    } else {
        handle = qAbs(x - lowerCentre) <= qAbs(x - upperCentre) ? Handle::Lower : Handle::Upper;
    }

    m_pressedHandle = handle;
    m_focusHandle = handle;
    const QRect rect = handle == Handle::Lower ? lowerRect : upperRect;
    if (rect.contains(event->pos())) {
        m_grabOffset = x - rect.x();
    } else {
        // A press on the groove brings the handle's centre to the cursor, then drags it on.
        m_grabOffset = (rect.width() - 1) / 2;
        setValue(handle, valueAt(x - m_grabOffset));
    }
    update();
}

void DoubleSlider::mouseMoveEvent(QMouseEvent* event)
{
    const int x = event->pos().x();
    if (m_pressUndecided) {
        if (x == m_pressX)
            return;
        const bool reversed = layoutDirection() == Qt::RightToLeft;
        m_pressUndecided = false;
        m_pressedHandle = (x < m_pressX) != reversed ? Handle::Lower : Handle::Upper;
        m_focusHandle = m_pressedHandle;
    }

    if (m_pressedHandle == Handle::None) {
        const Handle hovered = handleAt(event->pos());
        if (hovered != m_hoveredHandle) {
            m_hoveredHandle = hovered;
            update();
        }
        return;
    }
    setValue(m_pressedHandle, valueAt(x - m_grabOffset));
}

void DoubleSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_pressUndecided = false;
    m_pressedHandle = Handle::None;
    m_hoveredHandle = handleAt(event->pos());
    update();
}

void DoubleSlider::keyPressEvent(QKeyEvent* event)
{
    // Left and Right follow the screen, so they swap meaning in a right-to-left layout.
    const qint64 step = layoutDirection() == Qt::RightToLeft ? -qint64(m_singleStep) : qint64(m_singleStep);
    qint64 target = value(m_focusHandle);
    switch (event->key()) {
    case Qt::Key_Left:
        target -= step;
        break;
    case Qt::Key_Right:
        target += step;
        break;
    case Qt::Key_Down:
        target -= m_singleStep;
        break;
    case Qt::Key_Up:
        target += m_singleStep;
        break;
    case Qt::Key_PageDown:
        target -= qint64(PageSteps) * m_singleStep;
        break;
    case Qt::Key_PageUp:
        target += qint64(PageSteps) * m_singleStep;
        break;
    case Qt::Key_Home:
        target = m_minimum;
        break;
    case Qt::Key_End:
        target = m_maximum;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    setValue(m_focusHandle, int(qBound(qint64(m_minimum), target, qint64(m_maximum))));
}

void DoubleSlider::leaveEvent(QEvent* event)
{
    m_hoveredHandle = Handle::None;
    update();
    QWidget::leaveEvent(event);
}

void DoubleSlider::initStyleOption(QStyleOptionSlider* option, int position) const
{
    option->initFrom(this);
    // Focus belongs to one handle, not the whole control; it is drawn separately.
    option->state &= ~QStyle::State_HasFocus;
    option->state |= QStyle::State_Horizontal;
    option->orientation = Qt::Horizontal;
    option->subControls = QStyle::SC_None;
    option->activeSubControls = QStyle::SC_None;
    option->minimum = m_minimum;
    option->maximum = m_maximum;
    option->sliderPosition = position;
    option->sliderValue = position;
    option->singleStep = m_singleStep;
    option->pageStep = PageSteps * m_singleStep;
    option->upsideDown = layoutDirection() == Qt::RightToLeft;
}

QRect DoubleSlider::handleRect(Handle handle) const
{
    QStyleOptionSlider option;
    initStyleOption(&option, value(handle));
    return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
}

DoubleSlider::Handle DoubleSlider::handleAt(const QPoint& pos) const
{
    const Handle other = m_focusHandle == Handle::Lower ? Handle::Upper : Handle::Lower;
    if (handleRect(m_focusHandle).contains(pos))
        return m_focusHandle;
    return handleRect(other).contains(pos) ? other : Handle::None;
}

// The value that puts the handle's left edge at handleLeft, as QSlider maps pixels to values.
int DoubleSlider::valueAt(int handleLeft) const
{
    QStyleOptionSlider option;
    initStyleOption(&option, m_minimum);
    const QRect groove = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    return QStyle::sliderValueFromPosition(m_minimum, m_maximum, handleLeft - groove.x(),
                                           groove.width() - handle.width(), option.upsideDown);
}

int DoubleSlider::value(Handle handle) const
{
    return handle == Handle::Upper ? m_upper : m_lower;
}

void DoubleSlider::setValue(Handle handle, int value)
{
    if (handle == Handle::Lower) {
        value = qBound(m_minimum, value, m_upper);
        if (value == m_lower)
            return;
        m_lower = value;
        update();
        Q_EMIT lowerValueChanged(value);
    } else if (handle == Handle::Upper) {
        value = qBound(m_lower, value, m_maximum);
        if (value == m_upper)
            return;
        m_upper = value;
        update();
        Q_EMIT upperValueChanged(value);
    }
}

void DoubleSlider::setRange(int minimum, int maximum)
{
    if (minimum == m_minimum && maximum == m_maximum)
        return;
    m_minimum = minimum;
    m_maximum = maximum;
    // Both values settle before either signal goes out, so a slot reading the other value
    // never sees a pair that is out of order or out of range.
    const int lower = qBound(minimum, m_lower, maximum);
    const int upper = qBound(minimum, m_upper, maximum);
    const bool lowerChanged = lower != m_lower;
    const bool upperChanged = upper != m_upper;
    m_lower = lower;
    m_upper = upper;
    update();
    if (lowerChanged)
        Q_EMIT lowerValueChanged(lower);
    if (upperChanged)
        Q_EMIT upperValueChanged(upper);
}

void DoubleSlider::drawHandle(QPainter* painter, Handle handle) const
{
    QStyleOptionSlider option;
    initStyleOption(&option, value(handle));
    option.subControls = QStyle::SC_SliderHandle;
    if (handle == m_pressedHandle) {
        option.activeSubControls = QStyle::SC_SliderHandle;
        option.state |= QStyle::State_Sunken;
    } else if (handle == m_hoveredHandle) {
        option.activeSubControls = QStyle::SC_SliderHandle;
    }
    style()->drawComplexControl(QStyle::CC_Slider, &option, painter, this);
}

} // namespace kvWidgets
