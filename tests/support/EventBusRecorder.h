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

    EventBusRecorder()
        : m_listenerId(MDEventBus::addListener([this](int kind, const QString& text) {
              std::lock_guard<std::mutex> lock(m_mutex);
              m_messages.append({kind, text});
          }))
    {
    }
    ~EventBusRecorder() { MDEventBus::removeListener(m_listenerId); }

    QList<Message> messages() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_messages;
    }
    // The texts of every message of this kind (of any kind: -1), in order.
    QStringList texts(int kind) const
    {
        QStringList result;
        for (const Message& message : messages()) {
            if (kind < 0 || message.kind == kind)
                result << message.text;
        }
        return result;
    }
    QStringList allTexts() const { return texts(-1); }
    void clear()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_messages.clear();
    }

private:
    mutable std::mutex m_mutex;
    QList<Message> m_messages;
    int m_listenerId;
};
