#pragma once

#include <fast/panel/VdsWidget.h>

#include <QSignalSpy>
#include <QString>

class FastEmulatorFixture;
class QPushButton;

namespace fast {
class VdsTreeModel;
}

// A VDS page as the panel makes it, over the fixture's emulator, connected and shown, with spies
// on the files it hands to the host and takes back.
struct VdsPageSession
{
    // projectDir defaults to the fixture's project folder.
    VdsPageSession(FastEmulatorFixture& fixture, fast::VdsWidget::eWidgetType type, const QString& projectDir = {});

    fast::VdsTreeModel& model();
    QPushButton* button();
    // Starts the mount of url the way a person would on this kind of page: typed in and the
    // button clicked, or picked in the file dialog that the button opens.
    void startMount(const QString& url);

    fast::VdsWidget widget;
    QSignalSpy added;
    QSignalSpy removed;
};
