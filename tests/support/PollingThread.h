#pragma once

#include <QObject>
#include <QStringList>

#include <memory>

class QThread;

namespace fast {
class Fast;
}

// The connection check worker on a thread of its own, wired as the panel wires it: heartBeat
// deletes the worker and quits the thread. What the thread emits is recorded through queued
// connections to an object of this thread: a QSignalSpy connects directly and would be filled on
// the worker's thread while the test reads it here.
class PollingThread
{
public:
    explicit PollingThread(std::shared_ptr<fast::Fast> client);
    // Interrupts the thread and waits until it has ended, after its current sleep.
    ~PollingThread();
    PollingThread(const PollingThread&) = delete;
    PollingThread& operator=(const PollingThread&) = delete;

    QThread* thread() const { return m_thread; }

    // "service plugin version" of every workFinished, e.g. "true false 2.0.0".
    QStringList results;
    int beats = 0;
    int finished = 0;

private:
    QObject m_receiver;
    QThread* m_thread;
};
