#include <fast/panel/OsduWidget.h>

#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/OsduTreeDelegate.h>
#include <fast/trees/OsduTreeView.h>

#include <QVBoxLayout>

namespace fast {

OsduWidget::OsduWidget(const std::shared_ptr<Fast>& fast, const QString& projectPath, QWidget* parent)
    : FastWidget(fast, parent), m_projectPath(projectPath)
{
    auto* layout = new QVBoxLayout(this);
    auto* tree = new OsduTreeView(this);
    tree->setItemDelegate(new OsduTreeDelegate(tree->proxyModel(), tree));
    layout->addWidget(tree);
    m_treeView = tree;
    connectTreeView();
}

} // namespace fast
