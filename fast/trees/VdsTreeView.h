#pragma once

#include <fast/trees/FastTreeView.h>

namespace fast {

// The VDS pages' tree: column 2 unmounts a volume or deletes a file.
class FASTPANEL_EXPORT VdsTreeView : public FastTreeView
{
    Q_OBJECT

public:
    explicit VdsTreeView(QWidget* parent = nullptr);

    // Always rebuilds from scratch.
    void refresh() override;
    void onActionClicked(const VdsModel& vds, int fileIndex, const QModelIndex& sourceIndex) override;
};

} // namespace fast
