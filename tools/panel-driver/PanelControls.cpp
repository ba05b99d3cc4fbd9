#include "PanelControls.h"

#include <fast/osdu/SearchInput.h>
#include <fast/panel/ControlNames.h>
#include <fast/panel/FastTabWidget.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/OsduWidget.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

QLabel* statusLabel(const fast::FastTabWidget& panel)
{
    return panel.findChild<QLabel*>(fast::kStatusLabel);
}

QTabWidget* pageTabs(const fast::FastTabWidget& panel)
{
    return panel.findChild<QTabWidget*>(fast::kPageTabs);
}

fast::OsduWidget* osduPage(const fast::FastTabWidget& panel)
{
    return panel.findChild<fast::OsduWidget*>(fast::kOsduPage);
}

fast::VdsWidget* localPage(const fast::FastTabWidget& panel)
{
    return panel.findChild<fast::VdsWidget*>(fast::kLocalPage);
}

fast::VdsWidget* cloudPage(const fast::FastTabWidget& panel)
{
    return panel.findChild<fast::VdsWidget*>(fast::kCloudPage);
}

void showPage(const fast::FastTabWidget& panel, QWidget* page)
{
    if (QTabWidget* tabs = pageTabs(panel))
        tabs->setCurrentWidget(page);
}

QLineEdit* pathField(const fast::VdsWidget& page)
{
    return page.findChild<QLineEdit*>(fast::kVdsPathField);
}

QPushButton* actionButton(const fast::VdsWidget& page)
{
    return page.findChild<QPushButton*>(fast::kVdsActionButton);
}

QComboBox* providerChoice(const fast::OsduWidget& page)
{
    return page.findChild<QComboBox*>(fast::kOsduProviderChoice);
}

QPushButton* connectButton(const fast::OsduWidget& page)
{
    return page.findChild<QPushButton*>(fast::kOsduConnectButton);
}

QLineEdit* signInAddress(const fast::OsduWidget& page)
{
    return page.findChild<QLineEdit*>(fast::kOsduSignInAddress);
}

QPushButton* copyAddressButton(const fast::OsduWidget& page)
{
    return page.findChild<QPushButton*>(fast::kOsduCopyAddressButton);
}

fast::SearchInput* searchInput(const fast::OsduWidget& page)
{
    return page.findChild<fast::SearchInput*>(fast::kOsduSearchInput);
}

QPushButton* searchButton(const fast::OsduWidget& page)
{
    return page.findChild<QPushButton*>(fast::kOsduSearchButton);
}

QLabel* resultLine(const fast::OsduWidget& page)
{
    return page.findChild<QLabel*>(fast::kOsduResultLabel);
}

QString resultLabel(const fast::OsduWidget& page)
{
    const QLabel* line = resultLine(page);
    return line ? line->text() : QString();
}

QStringList resultNames(const fast::OsduWidget& page)
{
    QStringList names;
    for (const fast::VdsModel& record : page.treeView()->model()->vdsList())
        names << record.name;
    return names;
}

fast::MountNewVolume* openMountDialog(const QWidget* page)
{
    for (fast::MountNewVolume* dialog : page->findChildren<fast::MountNewVolume*>()) {
        if (dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

QLineEdit* fileNameField(const fast::MountNewVolume& dialog)
{
    return dialog.findChild<QLineEdit*>(fast::kMountFileNameField);
}

QLabel* fileNameLabel(const fast::MountNewVolume& dialog)
{
    return dialog.findChild<QLabel*>(fast::kMountFileNameLabel);
}

QPushButton* saveButton(const fast::MountNewVolume& dialog)
{
    return dialog.findChild<QPushButton*>(fast::kMountSaveButton);
}

QPushButton* cancelButton(const fast::MountNewVolume& dialog)
{
    return dialog.findChild<QPushButton*>(fast::kMountCancelButton);
}
