#include <fast/trees/FastHeaderView.h>

#include <fast/trees/FastSortFilterProxyModel.h>

#include <QCheckBox>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace fast {

FastHeaderView::FastHeaderView(Qt::Orientation orientation, QWidget* parent)
    : kvWidgets::HeaderView(orientation, parent)
{
}

FastHeaderView::~FastHeaderView()
{
    // The pop-up's boxes tell this object when they go; let them go while it is still whole.
    delete popupWidget();
}

void FastHeaderView::setRegistrationFilterEnabled(bool enabled)
{
    m_registrationFilterEnabled = enabled;
}

QWidget* FastHeaderView::createPopupWidget(int logicalIndex)
{
    return kvWidgets::HeaderView::createPopupWidget(logicalIndex);
}

void FastHeaderView::fillPopup(QVBoxLayout* layout, int logicalIndex)
{
    FastSortFilterProxyModel* proxy = filterModel();
    if (!proxy)
        return;
    const QStringList choices = proxy->filterChoices();
    const QMap<QString, int> states = proxy->filterStates();

    // The boxes die with the pop-up; forget them then.
    m_checkBoxes.clear();
    m_allCheckBox = new QCheckBox(tr("All"));
    connect(m_allCheckBox, &QObject::destroyed, this, [this] {
        m_allCheckBox = nullptr;
        m_checkBoxes.clear();
    });
    connect(m_allCheckBox, &QCheckBox::stateChanged, this, &FastHeaderView::onAllChanged);

    for (const QString& choice : choices) {
        auto* box = new QCheckBox(FastSortFilterProxyModel::choiceText(choice));
        box->setCheckState(static_cast<Qt::CheckState>(states.value(choice, Qt::Unchecked)));
        layout->addWidget(box);
        m_checkBoxes.append(box);
        connect(box, &QCheckBox::stateChanged, this,
                [this, choice, logicalIndex](int state) { onChoiceChanged(choice, state, logicalIndex); });
    }
    layout->insertWidget(0, m_allCheckBox);
    syncAllCheckBox();
}

bool FastHeaderView::isFilterActive(int /*logicalIndex*/)
{
    return hidesAnything();
}

bool FastHeaderView::hasFilter(int /*logicalIndex*/) const
{
    return false;
}

void FastHeaderView::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    if (!rect.isValid())
        return;
    kvWidgets::HeaderView::paintSection(painter, rect, logicalIndex);
    if (logicalIndex != 0 || !m_registrationFilterEnabled)
        return;
    const bool highlighted = isEnabled() && (getHoverIndex() == 0 || hidesAnything());
    painter->drawPixmap(getDrawingRect(rect), getFilterPixmap(highlighted));
}

void FastHeaderView::mouseReleaseEvent(QMouseEvent* event)
{
    QHeaderView::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && m_registrationFilterEnabled)
        showSortPopup(logicalIndexAt(event->pos()));
}

void FastHeaderView::onChoiceChanged(const QString& choice, int state, int logicalIndex)
{
    FastSortFilterProxyModel* proxy = filterModel();
    if (!proxy)
        return;
    proxy->setFilterState(choice, state);
    proxy->invalidateFilterPublic();
    syncAllCheckBox();
    viewport()->update();
    Q_EMIT filterColumns(logicalIndex);
}

void FastHeaderView::onAllChanged(int state)
{
    if (m_syncingAll)
        return;
    // A click on a partly checked "All" lands on "partly" again through the tri-state cycle;
    // it means "check everything".
    const Qt::CheckState target = state == Qt::Unchecked ? Qt::Unchecked : Qt::Checked;
    for (QCheckBox* box : qAsConst(m_checkBoxes))
        box->setCheckState(target);
    syncAllCheckBox();
}

void FastHeaderView::syncAllCheckBox()
{
    if (!m_allCheckBox)
        return;
    int checked = 0;
    for (const QCheckBox* box : qAsConst(m_checkBoxes))
        checked += box->checkState() == Qt::Checked ? 1 : 0;
    const Qt::CheckState state = checked == 0 && !m_checkBoxes.isEmpty() ? Qt::Unchecked
                                 : checked == m_checkBoxes.size()        ? Qt::Checked
                                                                         : Qt::PartiallyChecked;
    m_syncingAll = true;
    m_allCheckBox->setCheckState(state);
    if (state != Qt::PartiallyChecked)
        m_allCheckBox->setTristate(false);
    m_syncingAll = false;
}

FastSortFilterProxyModel* FastHeaderView::filterModel() const
{
    return qobject_cast<FastSortFilterProxyModel*>(model());
}

bool FastHeaderView::hidesAnything() const
{
    const FastSortFilterProxyModel* proxy = filterModel();
    if (!proxy)
        return false;
    const QMap<QString, int> states = proxy->filterStates();
    int checked = 0;
    for (int state : states)
        checked += state == Qt::Checked ? 1 : 0;
    return checked != states.size();
}

} // namespace fast
