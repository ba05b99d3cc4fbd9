#pragma once

#include <fast/fastpanel_export.h>
#include <fast/client/VdsMetaTypes.h>

#include <QTreeView>

#include <string>
#include <vector>

namespace fast {

class FastSortFilterProxyModel;
class FastTreeModel;

// The tree of every page: owns its header and proxy, holds the page's model, turns clicks on
// action icons into signals, keeps the delegate's hover state and stripes the rows. A view
// starts disabled with its icon columns hidden, until FAST answers.
class FASTPANEL_EXPORT FastTreeView : public QTreeView
{
    Q_OBJECT

public:
    explicit FastTreeView(QWidget* parent = nullptr);

    FastTreeModel* model() const { return m_model; }
    QAbstractItemModel* sourceModel() const;
    FastSortFilterProxyModel* proxyModel() const { return m_proxyModel; }

    // Disconnected: disabled, icon columns hidden, rows cleared (the records stay).
    void setConnectedToFast(bool connected);

    // Empties the tree: rows and records.
    void clear();

    // Rebuilds the rows from the records and fits column 0 to the longest name, the names of
    // files and details under a volume included.
    virtual void refresh();
    virtual void onActionClicked(const VdsModel& vds, int fileIndex, const QModelIndex& sourceIndex) = 0;

Q_SIGNALS:
    void mountVds(fast::VdsModel vdsModel);
    void unmountVds(std::string vdsId, std::vector<fast::VdsFile> fileList = {});
    void deleteFile(std::string vdsId, fast::VdsFile& vdsFile);

protected:
    // For the derived constructor, right after it made its model: the proxy takes it as its
    // source once and becomes the view's model.
    void setSourceTreeModel(FastTreeModel* model);
    // The icon column's action: delete the file of a file row, else unmount a registered volume.
    void emitUnmountOrDelete(const VdsModel& vds, int fileIndex);

    void mousePressEvent(QMouseEvent* event) override;
    // Enter or Return: the mount action of the current row, if it has one; Delete: its unmount or
    // delete action. As a click on that icon does; anything else is the tree's usual keys.
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    int sizeHintForColumn(int column) const override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void onFilterColumns(int logicalIndex);
    void onSectionResized(int logicalIndex, int oldSize, int newSize);
    void setHovered(const QModelIndex& index);
    int widestName(const QModelIndex& parent, int depth) const;
    // Runs the action of the current row's cell in column, when that cell has one.
    bool runActionOfCurrentRow(int column);

    FastTreeModel* m_model = nullptr;
    FastSortFilterProxyModel* m_proxyModel = nullptr;
};

} // namespace fast
