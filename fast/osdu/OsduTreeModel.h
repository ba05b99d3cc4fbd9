#pragma once

#include <fast/trees/FastTreeModel.h>

namespace fast {

// The datasets found on the OSDU platform: per dataset its name and description, then "Files"
// (always), "Id" (the record id) and "Kind"; columns 2 and 3 carry the mount and the
// unmount/delete icons.
class FASTPANEL_EXPORT OsduTreeModel : public FastTreeModel
{
    Q_OBJECT

public:
    explicit OsduTreeModel(QObject* parent = nullptr);

    void clearRows() override;
    // Clears the rows first.
    void populate() override;
    // The dataset stays among the results, as one that FAST does not know: no id, no files.
    void vdsUnmounted(const std::string& vdsId) override;
};

} // namespace fast
