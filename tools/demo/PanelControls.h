#pragma once

#include <fast/client/VdsDescriptors.h>

#include <QString>

#include <optional>

class QLineEdit;
class QPushButton;

namespace fast {
class FastTabWidget;
class MountNewVolume;
class VdsWidget;
} // namespace fast

// How the scripted tour reaches the panel's controls: through the public page and dialog
// classes and the widgets they hold, as a user's clicks would, never through the panel's
// internals. Each returns null (or nothing) when the panel does not look as expected.
namespace panelControls {

fast::VdsWidget* localPage(const fast::FastTabWidget* panel);
void showPage(const fast::FastTabWidget* panel, fast::VdsWidget* page);

// What the page's own Open VDS button does once its file dialog is answered, which a script
// cannot do: the tree's record for that path, or a new one shown in the tree.
fast::VdsModel chooseLocalVolume(fast::VdsWidget* page, const QString& path);
std::optional<fast::VdsModel> volumeWithUrl(const fast::VdsWidget* page, const QString& url);

fast::MountNewVolume* openMountDialog(const fast::VdsWidget* page);
QLineEdit* fileNameField(const fast::MountNewVolume* dialog);
QPushButton* saveButton(const fast::MountNewVolume* dialog);

// A name that neither the project folder nor FAST's drive holds yet, so that a tour run again
// on the same project and service does not trip over its earlier mount.
QString freeFileName(const QString& wanted, const QString& projectFolder);

} // namespace panelControls
