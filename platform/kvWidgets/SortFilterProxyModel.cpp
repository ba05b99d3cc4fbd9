#include <kvWidgets/SortFilterProxyModel.h>

namespace kvWidgets {

SortFilterProxyModel::SortFilterProxyModel(QObject* parent) : QSortFilterProxyModel(parent)
{
}

void SortFilterProxyModel::invalidateFilterPublic()
{
    invalidateFilter();
}

} // namespace kvWidgets
