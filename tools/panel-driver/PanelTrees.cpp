#include "PanelTrees.h"

#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>
#include <fast/trees/TreeRoles.h>

#include <QCoreApplication>
#include <QHeaderView>
#include <QMouseEvent>

#include <algorithm>
#include <functional>

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
    const QPoint onScreen = view->viewport()->mapToGlobal(at);
    QMouseEvent press(QEvent::MouseButtonPress, at, onScreen, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &press);
    QMouseEvent release(QEvent::MouseButtonRelease, at, onScreen, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
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
