#pragma once

#include <fast/client/VdsDescriptors.h>

#include <QString>

#include <optional>
#include <string>

class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

namespace fast {
class FastTabWidget;
class FastTreeView;
class MountNewVolume;
class OsduWidget;
class SearchInput;
class VdsWidget;
} // namespace fast

// How the scripted tour reaches the panel's controls: through the public page and dialog
// classes and the widgets they hold, as a user's clicks would, never through the panel's
// internals. Each returns null (or nothing) when the panel does not look as expected.
namespace panelControls {

fast::VdsWidget* localPage(const fast::FastTabWidget* panel);
fast::OsduWidget* osduPage(const fast::FastTabWidget* panel);
void showPage(const fast::FastTabWidget* panel, QWidget* page);

// What the page's own Open VDS button does once its file dialog is answered, which a script
// cannot do: the tree's record for that path, or a new one shown in the tree.
fast::VdsModel chooseLocalVolume(fast::VdsWidget* page, const QString& path);
std::optional<fast::VdsModel> volumeWithUrl(const fast::VdsWidget* page, const QString& url);

// The OSDU page's own controls.
QPushButton* button(const QWidget* parent, const QString& text);
fast::SearchInput* searchField(const fast::OsduWidget* page);
QLabel* resultLabel(const fast::OsduWidget* page);

// The record behind a top-level row of the tree as the user sees it (sorted, filtered).
std::optional<fast::VdsModel> volumeAtRow(const fast::FastTreeView* view, int row);
// The first top-level row whose volume FAST does not know yet, -1 when there is none.
int firstUnregisteredRow(const fast::FastTreeView* view);
int registeredCount(const fast::FastTreeView* view);
int rowOfVolume(const fast::FastTreeView* view, const std::string& url);
// A left click in the middle of a cell, as the mouse gives it; column 2 holds the mount icon.
void clickCell(fast::FastTreeView* view, int row, int column);
// Opens a top-level row all the way down and, as a user would drag the column's edge, widens the
// name column until the names under it show in full.
void openRowWholly(fast::FastTreeView* view, int row);

fast::MountNewVolume* openMountDialog(const QWidget* page);
QLineEdit* fileNameField(const fast::MountNewVolume* dialog);
QPushButton* saveButton(const fast::MountNewVolume* dialog);

// A name that neither the project folder nor FAST's drive holds yet, so that a tour run again
// on the same project and service does not trip over its earlier mount.
QString freeFileName(const QString& wanted, const QString& projectFolder);

} // namespace panelControls
