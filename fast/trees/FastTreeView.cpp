#include <fast/trees/FastTreeView.h>

#include <fast/trees/FastHeaderView.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/FastTreeDelegate.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/TreeRoles.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace fast {

namespace {

constexpr int kIconColumnWidth = 30;
constexpr int kTextMargin = 40;

} // namespace

FastTreeView::FastTreeView(QWidget* parent) : QTreeView(parent)
{
    auto* header = new FastHeaderView(Qt::Horizontal, this);
    setHeader(header);
    setConnectedToFast(false);
    connect(header, &FastHeaderView::filterColumns, this, &FastTreeView::onFilterColumns);
    connect(header, &QHeaderView::sectionResized, this, &FastTreeView::onSectionResized);
    m_proxyModel = new FastSortFilterProxyModel(this);
    setMouseTracking(true);
    setAnimated(true);
}

QAbstractItemModel* FastTreeView::sourceModel() const
{
    return m_proxyModel ? m_proxyModel->sourceModel() : nullptr;
}

void FastTreeView::setSourceTreeModel(FastTreeModel* model)
{
    m_model = model;
    m_proxyModel->setSourceModel(model);
    setModel(m_proxyModel);
    // The header has sections only now: apply the starting state to them.
    setConnectedToFast(isEnabled());
}

void FastTreeView::setConnectedToFast(bool connected)
{
    setEnabled(connected);
    for (int section = 2; section < header()->count(); ++section)
        header()->setSectionHidden(section, !connected);
    if (connected || !m_model)
        return;
    m_model->clearRows();
    header()->setSectionResizeMode(0, QHeaderView::Interactive);
    header()->setSectionResizeMode(1, QHeaderView::Stretch);
    for (int section = 2; section < header()->count(); ++section) {
        header()->setSectionResizeMode(section, QHeaderView::Fixed);
        header()->resizeSection(section, kIconColumnWidth);
    }
}

void FastTreeView::clear()
{
    if (!m_model)
        return;
    m_model->clearRows();
    m_model->removeAllRecords();
}

void FastTreeView::refresh()
{
    m_model->populate();
    header()->resizeSection(0, widestName(QModelIndex(), 0) + kTextMargin);
}

int FastTreeView::widestName(const QModelIndex& parent, int depth) const
{
    // The names of the rows below parent, each after its indentation, so that an opened row's
    // file names show in full too.
    int widest = 0;
    for (int row = 0; row < m_model->rowCount(parent); ++row) {
        const QModelIndex name = m_model->index(row, 0, parent);
        widest = std::max(widest, depth * indentation() + fontMetrics().horizontalAdvance(name.data().toString()));
        if (m_model->hasChildren(name))
            widest = std::max(widest, widestName(name, depth + 1));
    }
    return widest;
}

void FastTreeView::emitUnmountOrDelete(const VdsModel& vds, int fileIndex)
{
    if (fileIndex >= 0 && fileIndex < static_cast<int>(vds.files.size())) {
        VdsFile file = vds.files[static_cast<std::size_t>(fileIndex)];
        Q_EMIT deleteFile(vds.vdsId, file);
    } else if (!vds.vdsId.empty()) {
        Q_EMIT unmountVds(vds.vdsId, vds.files);
    }
}

void FastTreeView::mousePressEvent(QMouseEvent* event)
{
    QTreeView::mousePressEvent(event);
    const QModelIndex sourceIndex = m_proxyModel->mapToSource(indexAt(event->pos()));
    if (!sourceIndex.isValid() || !m_model)
        return;
    const int recordIndex = sourceIndex.data(VdsIndexRole).toInt();
    const int fileIndex = sourceIndex.data(FileIndexRole).toInt();
    const bool action = sourceIndex.data(ActionRole).toBool();
    const std::optional<VdsModel> vds = m_model->vdsAt(recordIndex);
    if (event->button() == Qt::LeftButton && vds && action)
        onActionClicked(*vds, fileIndex, sourceIndex);
}

void FastTreeView::keyPressEvent(QKeyEvent* event)
{
    // The last column holds the unmount or delete icon on every page; a mount icon, where a page
    // has one, stands before it.
    const int deleteColumn = m_model ? m_model->columnCount() - 1 : -1;
    bool handled = false;
    switch (event->key()) {
    case Qt::Key_Delete:
        handled = runActionOfCurrentRow(deleteColumn);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        for (int column = 2; column < deleteColumn && !handled; ++column)
            handled = runActionOfCurrentRow(column);
        break;
    default:
        break;
    }
    if (handled)
        event->accept();
    else
        QTreeView::keyPressEvent(event);
}

bool FastTreeView::runActionOfCurrentRow(int column)
{
    const QModelIndex current = m_proxyModel->mapToSource(currentIndex());
    if (!current.isValid() || column < 0)
        return false;
    const QModelIndex cell = current.siblingAtColumn(column);
    const std::optional<VdsModel> vds = m_model->vdsAt(cell.data(VdsIndexRole).toInt());
    if (!vds || !cell.data(ActionRole).toBool())
        return false;
    onActionClicked(*vds, cell.data(FileIndexRole).toInt(), cell);
    return true;
}

void FastTreeView::mouseMoveEvent(QMouseEvent* event)
{
    QTreeView::mouseMoveEvent(event);
    setHovered(indexAt(event->pos()));
}

bool FastTreeView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::Leave)
        setHovered(QModelIndex());
    return QTreeView::viewportEvent(event);
}

int FastTreeView::sizeHintForColumn(int column) const
{
    if (!qobject_cast<FastTreeModel*>(sourceModel()))
        return QTreeView::sizeHintForColumn(column);
    const QStandardItem* headerItem = m_model->horizontalHeaderItem(column);
    const int textWidth = fontMetrics().horizontalAdvance(headerItem ? headerItem->text() : QString()) + kTextMargin;
    return std::max(header()->sectionSize(column), textWidth);
}

void FastTreeView::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    // Children take their parent's stripe, so a volume and its rows read as one block. The
    // view's palette, which the delegates pick their icons by: a host may set one on its dock alone.
    const int row = index.parent().isValid() ? index.parent().row() : index.row();
    painter->fillRect(option.rect, option.palette.color(row % 2 == 1 ? QPalette::AlternateBase : QPalette::Base));
    QTreeView::drawRow(painter, option, index);
}

void FastTreeView::onFilterColumns(int /*logicalIndex*/)
{
    header()->viewport()->update();
}

void FastTreeView::onSectionResized(int /*logicalIndex*/, int /*oldSize*/, int /*newSize*/)
{
    // Icons are centred in their cells: redraw them where the cells now are.
    viewport()->update();
}

void FastTreeView::setHovered(const QModelIndex& index)
{
    auto* delegate = qobject_cast<FastTreeDelegate*>(itemDelegate());
    if (!delegate)
        return;
    delegate->setHoveredIndex(index);
    viewport()->update();
}

} // namespace fast
