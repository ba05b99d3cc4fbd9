#pragma once

#include <fast/client/VdsDescriptors.h>

#include <optional>
#include <string>

namespace fast {
class FastTreeView;
}

// Reading and clicking a page's volume tree as the user sees it: rows are the sorted, filtered
// top-level rows of the view, not the model's.

// The record behind a top-level row; nothing when there is no such row.
std::optional<fast::VdsModel> volumeAtRow(const fast::FastTreeView* view, int row);
// The first top-level row whose volume FAST does not know yet, -1 when there is none.
int firstUnregisteredRow(const fast::FastTreeView* view);
int registeredCount(const fast::FastTreeView* view);
// The top-level row of the volume at url, -1 when the tree does not show it.
int rowOfVolume(const fast::FastTreeView* view, const std::string& url);
// A left click in the middle of a cell, as the mouse gives it; column 2 holds the mount icon.
void clickCell(fast::FastTreeView* view, int row, int column);
// Opens a top-level row all the way down and, as a user would drag the column's edge, widens the
// name column until the names under it show in full.
void openRowWholly(fast::FastTreeView* view, int row);
