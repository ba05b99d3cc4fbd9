#include <fast/panel/CheckConnectionToFastWorker.h>

#include <fast/client/Fast.h>
#include <fast/panel/PanelMessages_p.h>

#include <QThread>

#include <utility>

namespace fast {

CheckConnectionToFastWorker::CheckConnectionToFastWorker(std::shared_ptr<Fast> fast, QObject* parent)
    : QObject(parent), m_fast(std::move(fast))
{
}

CheckConnectionToFastWorker::~CheckConnectionToFastWorker() = default;

void CheckConnectionToFastWorker::run()
{
    for (;;) {
        if (thread()->isInterruptionRequested() || !m_fast) {
            Q_EMIT heartBeat();
            return;
        }
        poll();
        QThread::msleep(PollIntervalMs);
    }
}

void CheckConnectionToFastWorker::poll()
{
    // An exception leaving run() would end the host's process: a service that answers what it
    // should not is a service that is not available, for this poll.
    try {
        const std::optional<std::string> version = m_fast->getVersion();
        // Asked every time, also when the service did not answer: both requests, in this order.
        const bool pluginAvailable = m_fast->isKorvanePluginAvailable();
        Q_EMIT workFinished(version.has_value(), pluginAvailable,
                            QString::fromStdString(version.value_or(std::string())));
    } catch (const std::exception& failure) {
        trace(exceptionText(failure));
        Q_EMIT workFinished(false, false, QString());
    } catch (...) {
        trace(QString("Unknown exception while checking the connection to Bluware FAST™"));
        Q_EMIT workFinished(false, false, QString());
    }
}

} // namespace fast
