#include "PollingThread.h"

#include <fast/panel/CheckConnectionToFastWorker.h>

#include <QTest>
#include <QThread>

using fast::CheckConnectionToFastWorker;

PollingThread::PollingThread(std::shared_ptr<fast::Fast> client) : m_thread(new QThread)
{
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

PollingThread::~PollingThread()
{
    // quit() reaches the thread object queued on this thread, so keep the events flowing.
    m_thread->requestInterruption();
    if (!QTest::qWaitFor([this] { return m_thread->isFinished(); }, 10000))
        qWarning("the worker thread did not end within 10 s");
    m_thread->wait();
    delete m_thread;
}
