#pragma once

#include <QString>

class QWidget;

namespace fast {
class MountNewVolume;
}

// Plays the person in front of the panel: answers the mount dialog and the file dialog.
fast::MountNewVolume* openMountDialog(QWidget* page);
// Types the name and clicks the button ("Save" or "Cancel") of the page's open mount dialog.
void answerMountDialog(QWidget* page, const QString& name, const QString& button);
// Answers the next file dialog with path, from within its own event loop.
void answerNextFileDialog(const QString& path);
