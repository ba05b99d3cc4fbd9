#include "TreeViewFixture.h"

#include <QTest>
#include <QTreeView>

fast::VdsModel registeredVolume()
{
    return fast::VdsModel("r1", "cube", "kind", "a registered cube", "v1", "/d/cube.vds", {{"f1", "a"}, {"f2", "b"}});
}

fast::VdsModel unregisteredVolume()
{
    return fast::VdsModel("r2", "fresh", "kind", "not yet known", "", "/d/fresh.vds", {});
}

void showExpanded(QTreeView& view)
{
    view.resize(480, 360);
    view.show();
    view.expandAll();
    if (!QTest::qWaitForWindowExposed(&view))
        qWarning("the tree view was not exposed");
}

QModelIndex cellAt(const QAbstractItemView& view, std::initializer_list<int> path, int column)
{
    QModelIndex parent;
    const int* row = path.begin();
    for (; row + 1 != path.end(); ++row)
        parent = view.model()->index(*row, 0, parent);
    return view.model()->index(*row, column, parent);
}

QPoint centreOf(const QAbstractItemView& view, const QModelIndex& index)
{
    return view.visualRect(index).center();
}
