#pragma once

#include "FastEmulatorFixture.h"
#include "PanelDriver.h"

#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeView.h>
#include <fast/trees/VdsTreeModel.h>

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

// A VDS page as the panel makes it, over the fixture's emulator and in its project folder,
// connected and shown, with spies on the files it hands to the host and takes back.
struct VdsPageSession
{
    VdsPageSession(FastEmulatorFixture& fixture, fast::VdsWidget::eWidgetType type)
        : widget(type, fixture.client(), fixture.projectDir()), added(&widget, &fast::VdsWidget::addToExtraDataManager),
          removed(&widget, &fast::VdsWidget::removeVdsFileFromProject)
    {
        widget.setConnectedToFast(true);
        widget.show();
    }

    fast::VdsTreeModel& model() { return *static_cast<fast::VdsTreeModel*>(widget.treeView()->model()); }
    // Starts the mount of url the way a person would on this kind of page: typed in and the
    // button clicked, or picked in the file dialog that the button opens.
    void startMount(const QString& url)
    {
        if (widget.getType() == fast::VdsWidget::CLOUD_URL)
            pathField(widget)->setText(url);
        else
            answerNextFileDialog(url);
        QTest::mouseClick(actionButton(widget), Qt::LeftButton);
    }

    fast::VdsWidget widget;
    QSignalSpy added;
    QSignalSpy removed;
};
