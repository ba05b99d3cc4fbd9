#pragma once

#include <fast/fastpanel_export.h>

#include <QStandardItem>

namespace fast {

// A cell of a volume tree: read-only, not selectable, knowing its record and file.
class FASTPANEL_EXPORT OsduTreeItem : public QStandardItem
{
public:
    OsduTreeItem(const QString& text, int datasetIndex);
    OsduTreeItem(const QString& text, int datasetIndex, int fileIndex);

    // Marks the cell as one that shows an action icon.
    void setAction();
};

} // namespace fast
