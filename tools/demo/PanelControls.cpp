#include "PanelControls.h"

#include <fast/client/VirtualDrive.h>
#include <fast/panel/FastTabWidget.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace panelControls {

fast::VdsWidget* localPage(const fast::FastTabWidget* panel)
{
    if (!panel)
        return nullptr;
    for (fast::VdsWidget* page : panel->findChildren<fast::VdsWidget*>()) {
        if (page->getType() == fast::VdsWidget::LOCAL_FILE && page->treeView() && page->treeView()->model())
            return page;
    }
    return nullptr;
}

void showPage(const fast::FastTabWidget* panel, fast::VdsWidget* page)
{
    if (auto* tabs = panel->findChild<QTabWidget*>())
        tabs->setCurrentWidget(page);
}

fast::VdsModel chooseLocalVolume(fast::VdsWidget* page, const QString& path)
{
    // The path field is the page's only line edit of its own; deeper ones belong to its children.
    if (QLineEdit* field = page->findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly))
        field->setText(path);
    if (const std::optional<fast::VdsModel> known = volumeWithUrl(page, path))
        return *known;
    const fast::VdsModel record(QString(), QFileInfo(path).fileName(), QString(), QString(), std::string(),
                                path.toStdString(), {});
    page->treeView()->model()->addVds(record);
    page->treeView()->refresh();
    return record;
}

std::optional<fast::VdsModel> volumeWithUrl(const fast::VdsWidget* page, const QString& url)
{
    for (const fast::VdsModel& record : page->treeView()->model()->vdsList()) {
        if (record.url == url.toStdString())
            return record;
    }
    return std::nullopt;
}

fast::MountNewVolume* openMountDialog(const fast::VdsWidget* page)
{
    for (fast::MountNewVolume* dialog : page->findChildren<fast::MountNewVolume*>()) {
        if (dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

QLineEdit* fileNameField(const fast::MountNewVolume* dialog)
{
    // The spin boxes hold line edits too, one level down.
    return dialog ? dialog->findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

QPushButton* saveButton(const fast::MountNewVolume* dialog)
{
    if (!dialog)
        return nullptr;
    for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == QStringLiteral("Save"))
            return button;
    }
    return nullptr;
}

QString freeFileName(const QString& wanted, const QString& projectFolder)
{
    const auto taken = [&projectFolder](const QString& name) {
        return QDir(projectFolder).exists(name) || QDir(fast::mountPoint()).exists(name)
            || fast::fileExistsInVirtualDrive(name);
    };
    QString name = wanted;
    for (int suffix = 2; taken(name); ++suffix)
        name = QStringLiteral("%1-%2").arg(wanted).arg(suffix);
    return name;
}

} // namespace panelControls
