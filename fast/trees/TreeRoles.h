#pragma once

#include <Qt>

namespace fast {

// The only link from a row of a volume tree to its record.
enum TreeRole : int {
    // The record's index in the model's list.
    VdsIndexRole = Qt::UserRole + 1,
    // The file's index in the record's files; -1 on rows that are not files.
    FileIndexRole = Qt::UserRole + 2,
    // True on a cell that carries an action icon.
    ActionRole = Qt::UserRole + 3,
};

} // namespace fast
