#include <fast/panel/CheckConnectionToFastWorker.h>

#include <fast/client/Fast.h>
#include <fast/panel/PanelMessages_p.h>

#include <QThread>

#include <algorithm>
#include <chrono>
#include <utility>

namespace fast {

namespace {

// How often the wait looks at the thread's interruption request, which wakes nobody.
constexpr std::chrono::milliseconds kInterruptionCheck{100};

} // namespace

CheckConnectionToFastWorker::CheckConnectionToFastWorker(std::shared_ptr<Fast> fast, QObject* parent)
    : QObject(parent), m_fast(std::move(fast))
{
}

CheckConnectionToFastWorker::~CheckConnectionToFastWorker() = default;

void CheckConnectionToFastWorker::run()
{
    for (;;) {
        if (stopRequested() || !m_fast) {
            Q_EMIT heartBeat();
            return;
        }
        poll();
        waitForNextPoll();
    }
}

void CheckConnectionToFastWorker::stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_stopMutex);
        m_stopRequested = true;
    }
    m_stopAsked.notify_all();
}

bool CheckConnectionToFastWorker::stopRequested()
{
    // The worker may belong to no thread at all, as on the library's own threads.
    const QThread* own = thread();
    const std::lock_guard<std::mutex> lock(m_stopMutex);
    return m_stopRequested || (own && own->isInterruptionRequested());
}

void CheckConnectionToFastWorker::waitForNextPoll()
{
    const auto due = std::chrono::steady_clock::now() + std::chrono::milliseconds(PollIntervalMs);
    const QThread* own = thread();
    std::unique_lock<std::mutex> lock(m_stopMutex);
    while (!m_stopRequested && !(own && own->isInterruptionRequested())) {
        const auto now = std::chrono::steady_clock::now();
        if (now >= due)
            return;
        // Only a thread of its own can be interrupted, which wakes nobody: then it looks now and
        // then; otherwise it sleeps until the poll is due or stop() wakes it.
        const std::chrono::steady_clock::duration left = due - now;
        m_stopAsked.wait_for(lock,
                             own ? std::min<std::chrono::steady_clock::duration>(left, kInterruptionCheck) : left);
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
