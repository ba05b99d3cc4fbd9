#pragma once

#include "PanelControls.h"

#include <QString>

// Plays the person in front of the panel: answers the mount dialog and the file dialog, searches.

// Types the name and clicks the button ("Save" or "Cancel") of the page's open mount dialog.
void answerMountDialog(QWidget* page, const QString& name, const QString& button);
// Answers the next file dialog with path, from within its own event loop.
void answerNextFileDialog(const QString& path);

// Clicks Search and waits until the search is over; false if it did not end within 2 minutes
// (a thousand fetches under the sanitizers with both cores busy take a while).
bool search(const fast::OsduWidget& page);

// A name that neither the project folder nor FAST's drive holds yet, so that a script run again
// on the same project and service does not trip over its earlier mount.
QString freeFileName(const QString& wanted, const QString& projectFolder);
