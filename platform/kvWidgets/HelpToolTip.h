#pragma once

#include <kvWidgets/kvwidgets_export.h>

#include <QPixmap>
#include <QWidget>

namespace kvWidgets {

// A small help icon placed next to a control. Its text appears as a tool tip at the icon when
// the icon is hovered, clicked, or activated with Space or Enter, so the help is reachable
// without a mouse too. The text may be rich text; screen readers get its plain form.
class KVWIDGETS_EXPORT HelpToolTip : public QWidget
{
    Q_OBJECT

public:
    explicit HelpToolTip(const QPixmap& icon, const QString& text, QWidget* parent = nullptr);

    QString text() const;

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    void showTip();

    QPixmap m_icon;
    QString m_text;
};

} // namespace kvWidgets
