#pragma once

#include <fast/fastpanel_export.h>

#include <QStandardItem>

namespace fast {

// A cell of a volume tree: read-only, not selectable, knowing its record and file.
//
// The cell type of both trees, the VDS pages' and the OSDU page's: both models derive from
// FastTreeModel, whose rows are records and their files addressed by index, and the delegates
// and views find a cell's record and file the same way on every page. It is named after the
// OSDU page, where it first served; hosts know it by this name.
class FASTPANEL_EXPORT OsduTreeItem : public QStandardItem
{
public:
    OsduTreeItem(const QString& text, int datasetIndex);
    OsduTreeItem(const QString& text, int datasetIndex, int fileIndex);

    // Marks the cell as one that shows an action icon. The description says what a click on it
    // does ("Mount north-sea.vds"): the cell's tool tip and its accessible text.
    void setAction(const QString& description = QString());
};

} // namespace fast
