#pragma once

#include <QWidget>

class QCheckBox;
class QTreeWidget;

// Where the host shows what the library says on the event bus: errors, traces and
// information told apart, newest at the bottom.
class EventBusPane : public QWidget
{
    Q_OBJECT

public:
    explicit EventBusPane(QWidget* parent = nullptr);
    ~EventBusPane() override;

    int messageCount() const;

private:
    void append(int kind, const QString& text);
    void applyTraceFilter();

    QTreeWidget* m_messages;
    QCheckBox* m_showTraces;
    int m_listenerId = -1;
};
