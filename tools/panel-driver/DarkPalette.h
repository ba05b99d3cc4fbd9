#pragma once

#include <QPalette>

// The dark palette the panel is tried on, as users of a dark desktop theme run the Fusion style:
// rows near black (Base #2b2b2b, AlternateBase #424242) under white text.
QPalette darkFusionPalette();
