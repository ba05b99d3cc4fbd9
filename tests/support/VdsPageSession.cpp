#include "VdsPageSession.h"

#include "FastEmulatorFixture.h"
#include "PanelDriver.h"

#include <fast/trees/FastTreeView.h>
#include <fast/trees/VdsTreeModel.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

VdsPageSession::VdsPageSession(FastEmulatorFixture& fixture, fast::VdsWidget::eWidgetType type,
                               const QString& projectDir)
    : widget(type, fixture.client(), projectDir.isEmpty() ? fixture.projectDir() : projectDir),
      added(&widget, &fast::VdsWidget::addToExtraDataManager),
      removed(&widget, &fast::VdsWidget::removeVdsFileFromProject)
{
    widget.setConnectedToFast(true);
    widget.show();
}

fast::VdsTreeModel& VdsPageSession::model()
{
    return *static_cast<fast::VdsTreeModel*>(widget.treeView()->model());
}

QPushButton* VdsPageSession::button()
{
    return actionButton(widget);
}

void VdsPageSession::startMount(const QString& url)
{
    if (widget.getType() == fast::VdsWidget::CLOUD_URL)
        pathField(widget)->setText(url);
    else
        answerNextFileDialog(url);
    QTest::mouseClick(button(), Qt::LeftButton);
}
