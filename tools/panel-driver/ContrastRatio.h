#pragma once

#include <QColor>

// How far two colours stand apart as a reader sees them: the ratio of their relative
// luminances (each plus 0.05), from 1 (the same) to 21 (black on white). Text reads with ease
// at 4.5 or more; an icon's strokes stand out at 3 or more.
double contrastRatio(const QColor& a, const QColor& b);
