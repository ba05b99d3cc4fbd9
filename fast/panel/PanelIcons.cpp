#include <fast/panel/PanelIcons_p.h>

#include <QPalette>

namespace fast {

bool isDarkPalette(const QPalette& palette)
{
    return palette.color(QPalette::Base).lightnessF() < palette.color(QPalette::Text).lightnessF();
}

QPixmap panelIcon(const QString& name, const QPalette& palette, qreal devicePixelRatio)
{
    const QString set = isDarkPalette(palette) ? QStringLiteral("dark") : QStringLiteral("light");
    // The @2x image knows its ratio from its name (Qt's image reader reads the suffix).
    const QString scale = devicePixelRatio > 1.0 ? QStringLiteral("@2x") : QString();
    return QPixmap(QStringLiteral(":/%1/%2%3.png").arg(set, name, scale));
}

} // namespace fast
