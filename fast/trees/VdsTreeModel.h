#pragma once

#include <fast/trees/FastTreeModel.h>

namespace fast {

// The rows of the VDS pages: per volume its name, then "Files" with one row per mounted file,
// "Id" and "Path"; column 2 carries the unmount and delete icons.
class FASTPANEL_EXPORT VdsTreeModel : public FastTreeModel
{
    Q_OBJECT

public:
    explicit VdsTreeModel(QObject* parent = nullptr);

    void clearRows() override;
    void populate() override;
    void vdsUnmounted(const std::string& vdsId) override;
};

} // namespace fast
