#pragma once

#include <QImage>

class QWidget;

// The window as a person would see it: its contents with every open dialog drawn on top where
// it stands, the modal one in front. Works offscreen, where windows have no frames.
QImage windowPicture(QWidget* window);
