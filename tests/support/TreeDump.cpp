#include "TreeDump.h"

#include <fast/trees/TreeRoles.h>

#include <QAbstractItemModel>
#include <QStringList>

namespace {

void dumpRows(const QAbstractItemModel& model, const QModelIndex& parent, int depth, QStringList& lines)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(parent); ++column) {
            const QModelIndex cell = model.index(row, column, parent);
            QString text = QString("%1(%2,%3)")
                               .arg(cell.data().toString(), cell.data(fast::VdsIndexRole).toString(),
                                    cell.data(fast::FileIndexRole).toString());
            if (cell.data(fast::ActionRole).toBool())
                text += '*';
            cells << text;
        }
        lines << QString(depth * 2, ' ') + cells.join(" | ");
        dumpRows(model, model.index(row, 0, parent), depth + 1, lines);
    }
}

} // namespace

QString dumpTree(const QAbstractItemModel& model)
{
    QStringList lines;
    dumpRows(model, QModelIndex(), 0, lines);
    return lines.join('\n');
}
