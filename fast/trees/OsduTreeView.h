#pragma once

#include <fast/trees/FastTreeView.h>

namespace fast {

// The OSDU page's tree: column 2 mounts a dataset, column 3 unmounts it or deletes a file; the
// header offers the "Registered"/"Unregistered" filter.
class FASTPANEL_EXPORT OsduTreeView : public FastTreeView
{
    Q_OBJECT

public:
    explicit OsduTreeView(QWidget* parent = nullptr);

    void onActionClicked(const VdsModel& vds, int fileIndex, const QModelIndex& sourceIndex) override;
};

} // namespace fast
