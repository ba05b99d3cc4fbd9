#pragma once

#include <fast/client/VdsDescriptors.h>

#include <QModelIndex>
#include <QPoint>

class QAbstractItemView;
class QTreeView;

// Records for the tree tests: a registered volume with two files, and an unregistered one.
fast::VdsModel registeredVolume();
fast::VdsModel unregisteredVolume();

// Shows the view at a fixed size, expanded, waiting until it is on screen.
void showExpanded(QTreeView& view);

// The proxy index of (row, column) under the parent path given as rows from the top, e.g.
// {1, 0} is the first child of the second top-level row.
QModelIndex cellAt(const QAbstractItemView& view, std::initializer_list<int> path, int column);
QPoint centreOf(const QAbstractItemView& view, const QModelIndex& index);
