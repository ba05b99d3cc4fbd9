#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <mutex>

// The kinds of message the library sends.
enum BusKind : int { Error = 1, Trace = 3, Information = 4 };

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
