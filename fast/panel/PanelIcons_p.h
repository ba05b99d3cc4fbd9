#pragma once

#include <fast/fastpanel_export.h>

#include <QPixmap>
#include <QString>

class QPalette;

// Exported for the library's tests only; hosts see no _p.h header.
namespace fast {

// A palette is dark when its Base is darker than its Text: rows are then near black and the
// light-on-dark icons are drawn on them.
FASTPANEL_EXPORT bool isDarkPalette(const QPalette& palette);

// The panel's own icon <name> for rows of palette, drawn at devicePixelRatio: ":/light/<name>.png"
// or its twin lifted for dark rows under ":/dark/", and above ratio 1 the @2x image of either,
// so that it stays sharp. Null for a name the library does not carry.
FASTPANEL_EXPORT QPixmap panelIcon(const QString& name, const QPalette& palette, qreal devicePixelRatio);

} // namespace fast
