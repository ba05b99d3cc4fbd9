#include <kvWidgets/HelpToolTip.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QTextDocument>
#include <QToolTip>

namespace kvWidgets {

namespace {

// The keypad's Enter carries the keypad modifier; any other modifier means a shortcut.
bool isActivation(const QKeyEvent* event)
{
    const int key = event->key();
    return (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Select)
           && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

QString plainText(const QString& text)
{
    if (!Qt::mightBeRichText(text))
        return text;
    QTextDocument document;
    document.setHtml(text);
    return document.toPlainText();
}

// Room around the icon for the focus frame, so the frame never paints over the icon.
constexpr int FocusMargin = 2;

} // namespace

HelpToolTip::HelpToolTip(const QPixmap& icon, const QString& text, QWidget* parent)
    : QWidget(parent), m_icon(icon), m_text(text)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(plainText(text));
}

QString HelpToolTip::text() const
{
    return m_text;
}

QSize HelpToolTip::sizeHint() const
{
    const QSize icon = (QSizeF(m_icon.size()) / m_icon.devicePixelRatioF()).toSize();
    return icon + QSize(2 * FocusMargin, 2 * FocusMargin);
}

bool HelpToolTip::event(QEvent* event)
{
    // Shown at the icon rather than at the cursor, the same place the click and keyboard show it.
    if (event->type() == QEvent::ToolTip) {
        showTip();
        return true;
    }
    return QWidget::event(event);
}

void HelpToolTip::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    const QPixmap pixmap = isEnabled() ? m_icon : style()->generatedIconPixmap(QIcon::Disabled, m_icon, &option);
    style()->drawItemPixmap(&painter, rect(), Qt::AlignCenter, pixmap);

    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.backgroundColor = palette().color(backgroundRole());
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
}

void HelpToolTip::mousePressEvent(QMouseEvent* event)
{
    // Taken so that the release comes here and not to whatever lies beneath.
    event->setAccepted(event->button() == Qt::LeftButton);
}

// The tip hides itself on any button or key event that arrives after it appears, so it is
// opened on the release that ends the gesture rather than on the press.
void HelpToolTip::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
        showTip();
    else
        event->ignore();
}

void HelpToolTip::keyPressEvent(QKeyEvent* event)
{
    if (isActivation(event))
        event->accept();
    else
        QWidget::keyPressEvent(event);
}

void HelpToolTip::keyReleaseEvent(QKeyEvent* event)
{
    if (!isActivation(event)) {
        QWidget::keyReleaseEvent(event);
        return;
    }
    if (!event->isAutoRepeat())
        showTip();
}

void HelpToolTip::showTip()
{
    QToolTip::showText(mapToGlobal(rect().center()), m_text, this, rect());
}

} // namespace kvWidgets
