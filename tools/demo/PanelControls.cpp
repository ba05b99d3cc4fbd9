#include "PanelControls.h"

#include <fast/client/VirtualDrive.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/FastTabWidget.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/OsduWidget.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>
#include <fast/trees/TreeRoles.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTabWidget>

#include <algorithm>
#include <functional>

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

fast::OsduWidget* osduPage(const fast::FastTabWidget* panel)
{
    if (!panel)
        return nullptr;
    fast::OsduWidget* page = panel->findChild<fast::OsduWidget*>();
    return page && page->treeView() && page->treeView()->model() ? page : nullptr;
}

void showPage(const fast::FastTabWidget* panel, QWidget* page)
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
    fast::VdsModel record(QString(), QFileInfo(path).fileName(), QString(), QString(), std::string(),
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

QPushButton* button(const QWidget* parent, const QString& text)
{
    if (!parent)
        return nullptr;
    for (QPushButton* candidate : parent->findChildren<QPushButton*>()) {
        if (candidate->text() == text)
            return candidate;
    }
    return nullptr;
}

fast::SearchInput* searchField(const fast::OsduWidget* page)
{
    return page ? page->findChild<fast::SearchInput*>() : nullptr;
}

QLabel* resultLabel(const fast::OsduWidget* page)
{
    if (!page)
        return nullptr;
    // The help icons are labels too, with a picture and no text.
    for (QLabel* label : page->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (label->text().contains(QStringLiteral("result"), Qt::CaseInsensitive))
            return label;
    }
    return nullptr;
}

std::optional<fast::VdsModel> volumeAtRow(const fast::FastTreeView* view, int row)
{
    const QModelIndex shown = view->proxyModel()->index(row, 0);
    if (!shown.isValid())
        return std::nullopt;
    return view->model()->vdsAt(view->proxyModel()->mapToSource(shown).data(fast::VdsIndexRole).toInt());
}

int firstUnregisteredRow(const fast::FastTreeView* view)
{
    for (int row = 0; row < view->proxyModel()->rowCount(); ++row) {
        const std::optional<fast::VdsModel> volume = volumeAtRow(view, row);
        if (volume && volume->vdsId.empty())
            return row;
    }
    return -1;
}

int registeredCount(const fast::FastTreeView* view)
{
    int count = 0;
    for (const fast::VdsModel& volume : view->model()->vdsList())
        count += volume.vdsId.empty() ? 0 : 1;
    return count;
}

int rowOfVolume(const fast::FastTreeView* view, const std::string& url)
{
    for (int row = 0; row < view->proxyModel()->rowCount(); ++row) {
        const std::optional<fast::VdsModel> volume = volumeAtRow(view, row);
        if (volume && volume->url == url)
            return row;
    }
    return -1;
}

void clickCell(fast::FastTreeView* view, int row, int column)
{
    const QModelIndex cell = view->proxyModel()->index(row, column);
    view->scrollTo(cell);
    const QPoint at = view->visualRect(cell).center();
    QMouseEvent press(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &press);
    QMouseEvent release(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &release);
}

void openRowWholly(fast::FastTreeView* view, int row)
{
    const QAbstractItemModel* rows = view->proxyModel();
    const QModelIndex top = rows->index(row, 0);
    view->expandRecursively(top);
    // Room for the text past the delegate's own margins.
    constexpr int kTextMargin = 16;
    int wanted = view->header()->sectionSize(0);
    const std::function<void(const QModelIndex&)> measure = [&](const QModelIndex& parent) {
        for (int child = 0; child < rows->rowCount(parent); ++child) {
            const QModelIndex index = rows->index(child, 0, parent);
            const int start = view->visualRect(index).left() + view->header()->offset();
            wanted = std::max(wanted,
                              start + view->fontMetrics().horizontalAdvance(index.data().toString()) + kTextMargin);
            measure(index);
        }
    };
    measure(top);
    view->header()->resizeSection(0, wanted);
}

fast::MountNewVolume* openMountDialog(const QWidget* page)
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
    return button(dialog, QStringLiteral("Save"));
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
