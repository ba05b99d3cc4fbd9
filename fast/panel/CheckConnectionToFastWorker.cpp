#include <fast/panel/CheckConnectionToFastWorker.h>

#include <fast/client/Fast.h>

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
        const std::optional<std::string> version = m_fast->getVersion();
        // Asked every time, also when the service did not answer: both requests, in this order.
        const bool pluginAvailable = m_fast->isKorvanePluginAvailable();
        Q_EMIT workFinished(version.has_value(), pluginAvailable,
                            QString::fromStdString(version.value_or(std::string())));
        QThread::msleep(PollIntervalMs);
    }
}

} // namespace fast
