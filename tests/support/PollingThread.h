#pragma once

#include <fast/panel/CheckConnectionToFastWorker.h>

#include <QObject>
#include <QStringList>
#include <QTest>
#include <QThread>

#include <memory>

// The connection check worker on a thread of its own, wired as the panel wires it: heartBeat
// deletes the worker and quits the thread. What the thread emits is recorded through queued
// connections to an object of this thread: a QSignalSpy connects directly and would be filled on
// the worker's thread while the test reads it here.
class PollingThread
{
public:
    explicit PollingThread(std::shared_ptr<fast::Fast> client) : m_thread(new QThread)
    {
        using fast::CheckConnectionToFastWorker;
        auto* worker = new CheckConnectionToFastWorker(std::move(client));
        QObject::connect(m_thread, &QThread::finished, &m_receiver, [this] { ++finished; });
        QObject::connect(worker, &CheckConnectionToFastWorker::workFinished, &m_receiver,
                         [this](bool service, bool plugin, const QString& version) {
                             results << QStringLiteral("%1 %2 %3")
                                            .arg(service ? "true" : "false", plugin ? "true" : "false", version);
                         });
        QObject::connect(worker, &CheckConnectionToFastWorker::heartBeat, &m_receiver, [this] { ++beats; });
        QObject::connect(m_thread, &QThread::started, worker, &CheckConnectionToFastWorker::run);
        QObject::connect(worker, &CheckConnectionToFastWorker::heartBeat, worker, &QObject::deleteLater);
        QObject::connect(worker, &CheckConnectionToFastWorker::heartBeat, m_thread, &QThread::quit);
        worker->moveToThread(m_thread);
        m_thread->start();
    }
    // Interrupts the thread and waits until it has ended, after its current sleep. quit() reaches
    // the thread object queued on this thread, so the events keep flowing meanwhile.
    ~PollingThread()
    {
        m_thread->requestInterruption();
        if (!QTest::qWaitFor([this] { return m_thread->isFinished(); }, 10000))
            qWarning("the worker thread did not end within 10 s");
        m_thread->wait();
        delete m_thread;
    }

    QThread* thread() const { return m_thread; }

    // "service plugin version" of every workFinished, e.g. "true false 2.0.0".
    QStringList results;
    int beats = 0;
    int finished = 0;

private:
    QObject m_receiver;
    QThread* m_thread;
};
