#include "EventBusPane.h"

#include "ContrastRatio.h"

#include <korvane/MDEventBus.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMetaObject>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QTime>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

enum Column { TimeColumn, KindColumn, MessageColumn };

// Enough for a long session of five-second polls without the pane growing without bound.
constexpr int kMaxMessages = 5000;
// Text must stand 4.5:1 against its row to be read with ease.
constexpr double kReadableContrast = 4.5;

// The colour of trace rows: the text colour moved as far towards the rows' colour as it can go
// while it still reads at 4.5:1 on plain and on striped rows, so that traces recede behind
// errors and information without fading out (the palette's disabled text does, about 1.8:1).
QColor quietTextColour(const QPalette& palette)
{
    const QColor& text = palette.color(QPalette::Text);
    const QColor& base = palette.color(QPalette::Base);
    const QColor& stripe = palette.color(QPalette::AlternateBase);
    QColor quiet = text;
    for (double towardsRow = 0.05; towardsRow < 0.6; towardsRow += 0.05) {
        const QColor candidate = QColor::fromRgbF(text.redF() + (base.redF() - text.redF()) * towardsRow,
                                                  text.greenF() + (base.greenF() - text.greenF()) * towardsRow,
                                                  text.blueF() + (base.blueF() - text.blueF()) * towardsRow);
        if (contrastRatio(candidate, base) < kReadableContrast || contrastRatio(candidate, stripe) < kReadableContrast)
            break;
        quiet = candidate;
    }
    return quiet;
}

QString kindName(int kind)
{
    switch (kind) {
    case MDEventBus::Error:
        return EventBusPane::tr("error");
    case MDEventBus::Trace:
        return EventBusPane::tr("trace");
    case MDEventBus::Information:
        return EventBusPane::tr("information");
    default:
        return EventBusPane::tr("kind %1").arg(kind);
    }
}

} // namespace

EventBusPane::EventBusPane(QWidget* parent)
    : QWidget(parent), m_messages(new QTreeWidget(this)), m_showTraces(new QCheckBox(tr("Show &traces"), this))
{
    m_messages->setColumnCount(3);
    m_messages->setHeaderLabels({tr("Time"), tr("Kind"), tr("Message")});
    m_messages->setRootIsDecorated(false);
    m_messages->setUniformRowHeights(true);
    m_messages->setAlternatingRowColors(true);
    m_messages->header()->setSectionResizeMode(TimeColumn, QHeaderView::ResizeToContents);
    m_messages->header()->setSectionResizeMode(KindColumn, QHeaderView::ResizeToContents);

    m_showTraces->setChecked(true);
    auto* clear = new QPushButton(tr("&Clear"), this);

    auto* bar = new QHBoxLayout;
    bar->addWidget(m_showTraces);
    bar->addStretch();
    bar->addWidget(clear);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(bar);
    layout->addWidget(m_messages);

    connect(m_showTraces, &QCheckBox::toggled, this, &EventBusPane::applyTraceFilter);
    connect(clear, &QPushButton::clicked, m_messages, &QTreeWidget::clear);

    // Listeners run on the sender's thread (the connection worker sends from its own), so the
    // text crosses to the GUI thread queued; the sender never waits for the pane.
    m_listenerId = MDEventBus::addListener([this](int kind, const QString& text) {
        QMetaObject::invokeMethod(
            this, [this, kind, text] { append(kind, text); }, Qt::QueuedConnection);
    });
}

EventBusPane::~EventBusPane()
{
    MDEventBus::removeListener(m_listenerId);
}

int EventBusPane::messageCount() const
{
    return m_messages->topLevelItemCount();
}

void EventBusPane::append(int kind, const QString& text)
{
    QScrollBar* scroll = m_messages->verticalScrollBar();
    // Follow new messages only while the reader is at the bottom, not while they scroll back.
    const bool following = scroll->value() == scroll->maximum();

    auto* item = new QTreeWidgetItem(
        {QTime::currentTime().toString("HH:mm:ss.zzz"), kindName(kind), text.simplified()});
    item->setData(KindColumn, Qt::UserRole, kind);
    item->setToolTip(MessageColumn, text);
    switch (kind) {
    case MDEventBus::Error:
        item->setIcon(KindColumn, style()->standardIcon(QStyle::SP_MessageBoxCritical));
        break;
    case MDEventBus::Information:
        item->setIcon(KindColumn, style()->standardIcon(QStyle::SP_MessageBoxInformation));
        break;
    case MDEventBus::Trace:
        item->setIcon(KindColumn, style()->standardIcon(QStyle::SP_FileDialogDetailedView));
        // Traces are the bulk of the traffic: they recede so that the rest stands out.
        for (int column = 0; column < m_messages->columnCount(); ++column)
            item->setForeground(column, quietTextColour(m_messages->palette()));
        break;
    default:
        item->setIcon(KindColumn, style()->standardIcon(QStyle::SP_MessageBoxQuestion));
        break;
    }
    m_messages->addTopLevelItem(item);
    item->setHidden(kind == MDEventBus::Trace && !m_showTraces->isChecked());

    while (m_messages->topLevelItemCount() > kMaxMessages)
        delete m_messages->takeTopLevelItem(0);
    if (following)
        m_messages->scrollToBottom();
}

void EventBusPane::applyTraceFilter()
{
    const bool show = m_showTraces->isChecked();
    for (int row = 0; row < m_messages->topLevelItemCount(); ++row) {
        QTreeWidgetItem* item = m_messages->topLevelItem(row);
        if (item->data(KindColumn, Qt::UserRole).toInt() == MDEventBus::Trace)
            item->setHidden(!show);
    }
    m_messages->scrollToBottom();
}
