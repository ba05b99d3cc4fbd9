#pragma once

#include <fast/fastpanel_export.h>

#include <kvWidgets/HeaderView.h>

#include <QList>

class QCheckBox;

namespace fast {

class FastSortFilterProxyModel;

// The header of every volume tree. With the registration filter enabled (the OSDU tree),
// section 0 shows a filter icon and a click opens a pop-up with "All", "Registered" and
// "Unregistered", which drive the view's FastSortFilterProxyModel.
class FASTPANEL_EXPORT FastHeaderView : public kvWidgets::HeaderView
{
    Q_OBJECT

public:
    explicit FastHeaderView(Qt::Orientation orientation, QWidget* parent = nullptr);
    ~FastHeaderView() override;

    void setRegistrationFilterEnabled(bool enabled);
    bool isRegistrationFilterEnabled() const { return m_registrationFilterEnabled; }

    QWidget* createPopupWidget(int logicalIndex) override;
    void fillPopup(QVBoxLayout* layout, int logicalIndex) override;
    bool isFilterActive(int logicalIndex) override;

Q_SIGNALS:
    // The filter of the section changed and has been re-run.
    void filterColumns(int logicalIndex);

protected:
    // Only section 0 of a tree with the registration filter shows an icon, drawn here, and the
    // pop-up opens on any left click: the kit's own icon handling stays off.
    bool hasFilter(int logicalIndex) const override;
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void onChoiceChanged(const QString& choice, int state, int logicalIndex);
    void onAllChanged(int state);
    // "All" follows the choices: checked when all are, unchecked when none are, partly otherwise.
    void syncAllCheckBox();
    FastSortFilterProxyModel* filterModel() const;
    bool hidesAnything() const;

    QList<QCheckBox*> m_checkBoxes;
    QCheckBox* m_allCheckBox = nullptr;
    bool m_registrationFilterEnabled = false;
    bool m_syncingAll = false;
};

} // namespace fast
