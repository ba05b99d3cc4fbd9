#pragma once

#include <QString>
#include <QStringList>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QWidget;

namespace fast {
class FastTabWidget;
class MountNewVolume;
class OsduWidget;
class SearchInput;
class VdsWidget;
} // namespace fast

// How a script or a test reaches the panel's controls: by the object names the panel gives them
// (fast/panel/ControlNames.h), as a user's clicks would, never through the panel's internals nor
// by the order of the widgets. Each returns null when the panel does not look as expected.

// The panel: its status line, its tabs and its pages.
QLabel* statusLabel(const fast::FastTabWidget& panel);
QTabWidget* pageTabs(const fast::FastTabWidget& panel);
fast::OsduWidget* osduPage(const fast::FastTabWidget& panel);
fast::VdsWidget* localPage(const fast::FastTabWidget& panel);
fast::VdsWidget* cloudPage(const fast::FastTabWidget& panel);
// Brings page to the front, as a click on its tab does.
void showPage(const fast::FastTabWidget& panel, QWidget* page);

// A VDS page: the path (or URL) field and the button beside it, Open VDS or Mount VDS.
QLineEdit* pathField(const fast::VdsWidget& page);
QPushButton* actionButton(const fast::VdsWidget& page);

// The OSDU page's controls and what it shows.
QComboBox* providerChoice(const fast::OsduWidget& page);
QPushButton* connectButton(const fast::OsduWidget& page);
// The sign-in address shown when no browser could be opened, and its Copy button.
QLineEdit* signInAddress(const fast::OsduWidget& page);
QPushButton* copyAddressButton(const fast::OsduWidget& page);
fast::SearchInput* searchInput(const fast::OsduWidget& page);
QPushButton* searchButton(const fast::OsduWidget& page);
QLabel* resultLine(const fast::OsduWidget& page);
// The result line's text.
QString resultLabel(const fast::OsduWidget& page);
// The names of the datasets in the tree, in the model's order.
QStringList resultNames(const fast::OsduWidget& page);

// The page's mount dialog while it is open.
fast::MountNewVolume* openMountDialog(const QWidget* page);
QLineEdit* fileNameField(const fast::MountNewVolume& dialog);
QLabel* fileNameLabel(const fast::MountNewVolume& dialog);
QPushButton* saveButton(const fast::MountNewVolume& dialog);
QPushButton* cancelButton(const fast::MountNewVolume& dialog);
