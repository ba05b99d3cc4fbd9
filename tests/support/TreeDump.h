#pragma once

#include <QString>

class QAbstractItemModel;

// The whole tree as text, one line per row, children indented by two spaces; each cell is
// "text(record,file)" with "*" appended when it carries an action icon. Layout tests compare
// this with the expected tree in one go.
QString dumpTree(const QAbstractItemModel& model);
