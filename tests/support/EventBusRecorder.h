#pragma once

#include <korvane/MDEventBus.h>

#include <QList>
#include <QString>
#include <QStringList>

#include <mutex>

// The kinds of message the library sends, by their short names.
constexpr MDEventBus::Kind Error = MDEventBus::Error;
constexpr MDEventBus::Kind Trace = MDEventBus::Trace;
constexpr MDEventBus::Kind Information = MDEventBus::Information;

// Records what reaches the host's event bus while it lives, from any thread.
class EventBusRecorder
{
public:
    struct Message
    {
        int kind;
        QString text;
    };

    EventBusRecorder();
    ~EventBusRecorder();
    EventBusRecorder(const EventBusRecorder&) = delete;
    EventBusRecorder& operator=(const EventBusRecorder&) = delete;

    QList<Message> messages() const;
    // The texts of every message of this kind, in order.
    QStringList texts(int kind) const;
    QStringList allTexts() const;
    void clear();

private:
    mutable std::mutex m_mutex;
    QList<Message> m_messages;
    int m_listenerId;
};
