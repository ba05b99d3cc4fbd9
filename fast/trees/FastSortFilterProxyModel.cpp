#include <fast/trees/FastSortFilterProxyModel.h>

#include <fast/trees/FastTreeModel.h>

namespace fast {

const QString FastSortFilterProxyModel::Registered = QStringLiteral("Registered");
const QString FastSortFilterProxyModel::Unregistered = QStringLiteral("Unregistered");

FastSortFilterProxyModel::FastSortFilterProxyModel(QObject* parent) : kvWidgets::SortFilterProxyModel(parent)
{
    m_filterStates.insert(Registered, Qt::Checked);
    m_filterStates.insert(Unregistered, Qt::Checked);
}

void FastSortFilterProxyModel::setFilterState(const QString& choice, int state)
{
    m_filterStates.insert(choice, state);
}

QMap<QString, int> FastSortFilterProxyModel::filterStates() const
{
    return m_filterStates;
}

QStringList FastSortFilterProxyModel::filterChoices()
{
    // The offered choices are fixed; states recorded for anything else are left alone.
    return {Registered, Unregistered};
}

QString FastSortFilterProxyModel::choiceText(const QString& choice)
{
    if (choice == Registered)
        return tr("Registered");
    if (choice == Unregistered)
        return tr("Unregistered");
    return choice;
}

bool FastSortFilterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    const auto* model = qobject_cast<const FastTreeModel*>(sourceModel());
    if (!model)
        return false;
    if (sourceRow >= model->vdsCount() || sourceParent.isValid())
        return true;
    const std::optional<VdsModel> vds = model->vdsAt(sourceRow);
    if (!vds)
        return true;
    if (isChecked(Registered) && !vds->vdsId.empty())
        return true;
    return isChecked(Unregistered) && vds->vdsId.empty();
}

bool FastSortFilterProxyModel::isChecked(const QString& choice) const
{
    return m_filterStates.value(choice, Qt::Unchecked) == Qt::Checked;
}

} // namespace fast
