#include "EventBusRecorder.h"

#include <korvane/MDEventBus.h>

EventBusRecorder::EventBusRecorder()
    : m_listenerId(MDEventBus::addListener([this](int kind, const QString& text) {
          std::lock_guard<std::mutex> lock(m_mutex);
          m_messages.append({kind, text});
      }))
{
}

EventBusRecorder::~EventBusRecorder()
{
    MDEventBus::removeListener(m_listenerId);
}

QList<EventBusRecorder::Message> EventBusRecorder::messages() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_messages;
}

QStringList EventBusRecorder::texts(int kind) const
{
    QStringList result;
    for (const Message& message : messages()) {
        if (message.kind == kind)
            result << message.text;
    }
    return result;
}

QStringList EventBusRecorder::allTexts() const
{
    QStringList result;
    for (const Message& message : messages())
        result << message.text;
    return result;
}

void EventBusRecorder::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_messages.clear();
}
