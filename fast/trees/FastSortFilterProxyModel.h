#pragma once

#include <fast/fastpanel_export.h>

#include <kvWidgets/SortFilterProxyModel.h>

#include <QMap>
#include <QString>
#include <QStringList>

namespace fast {

// Between a tree view and its FastTreeModel: hides the top-level rows whose registration state
// ("Registered": known to FAST, "Unregistered": not) is unchecked. Children follow their row.
class FASTPANEL_EXPORT FastSortFilterProxyModel : public kvWidgets::SortFilterProxyModel
{
    Q_OBJECT

public:
    // The choices' keys, in English whatever the language shown.
    static const QString Registered;
    static const QString Unregistered;

    // Both choices start checked, so that every row shows.
    explicit FastSortFilterProxyModel(QObject* parent = nullptr);

    // state is a Qt::CheckState value; a choice missing from the map counts as unchecked.
    void setFilterState(const QString& choice, int state);
    QMap<QString, int> filterStates() const;
    QStringList filterChoices();
    // What the header's filter offers the user for a choice: its translated name.
    static QString choiceText(const QString& choice);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    bool isChecked(const QString& choice) const;

    QMap<QString, int> m_filterStates;
};

} // namespace fast
