#pragma once

#include <QPixmap>
#include <QString>

class QPalette;

namespace fast {

// A palette is dark when its Base is darker than its Text: rows are then near black and the
// light-on-dark icons are drawn on them.
bool isDarkPalette(const QPalette& palette);

// The panel's own icon <name> for rows of palette, drawn at devicePixelRatio: ":/light/<name>.png"
// or its twin lifted for dark rows under ":/dark/", and above ratio 1 the @2x image of either,
// so that it stays sharp. Null for a name the library does not carry.
QPixmap panelIcon(const QString& name, const QPalette& palette, qreal devicePixelRatio);

} // namespace fast
