#pragma once

#include <kvWidgets/kvwidgets_export.h>

#include <QSortFilterProxyModel>

namespace kvWidgets {

// A proxy whose filter can be re-run from outside, for filters that depend on state the proxy
// cannot observe (a pop-up's check boxes, a search field owned by someone else).
class KVWIDGETS_EXPORT SortFilterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit SortFilterProxyModel(QObject* parent = nullptr);

    void invalidateFilterPublic();
};

} // namespace kvWidgets
