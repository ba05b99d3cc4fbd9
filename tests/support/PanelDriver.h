#pragma once

#include <QString>
#include <QStringList>

class QPushButton;
class QWidget;

namespace osdu {
class OsduAuthProvider;
}

namespace fast {
class MountNewVolume;
class OsduWidget;
class SearchInput;
} // namespace fast

// Plays the person in front of the panel: answers the mount dialog and the file dialog.
fast::MountNewVolume* openMountDialog(QWidget* page);
// Types the name and clicks the button ("Save" or "Cancel") of the page's open mount dialog.
void answerMountDialog(QWidget* page, const QString& name, const QString& button);
// Answers the next file dialog with path, from within its own event loop.
void answerNextFileDialog(const QString& path);

// The OSDU page's controls and what it shows.
QPushButton* searchButton(const fast::OsduWidget& page);
QPushButton* connectButton(const fast::OsduWidget& page);
fast::SearchInput* searchInput(const fast::OsduWidget& page);
QString resultLabel(const fast::OsduWidget& page);
QStringList resultNames(const fast::OsduWidget& page);
// Clicks Search and waits until the search is over; false if it did not end within 2 minutes
// (a thousand fetches under the sanitizers with both cores busy take a while).
bool search(const fast::OsduWidget& page);
// Clicks Connect, waits for provider's sign-in (through the browser it was given), then searches
// as search() does; false if either did not end in time.
bool connectAndSearch(const fast::OsduWidget& page, osdu::OsduAuthProvider& provider);
