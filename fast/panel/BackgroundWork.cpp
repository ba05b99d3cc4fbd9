#include <fast/panel/BackgroundWork.h>
#include <fast/panel/BackgroundWork_p.h>

#include <fast/panel/PanelMessages_p.h>

#include <QObject>
#include <QThreadPool>

#include <memory>

namespace fast {

namespace {

// The work mostly waits on the network, and every panel's connection check holds a thread for the
// panel's whole life: the processor count, as QThreadPool would pick, is far too few. None of the
// work waits for other work, so a piece queued past this many only starts late.
constexpr int kMostThreads = 64;

// The library's own pool, not the global one: a host uses that too, and waiting for it would wait
// for the host's work.
QThreadPool& pool()
{
    // Never deleted: its destructor joins its threads, which at the library's unload on Windows
    // would run under the loader lock and hang. waitForBackgroundWork leaves it without threads.
    static QThreadPool* const threads = [] {
        auto* created = new QThreadPool;
        created->setMaxThreadCount(kMostThreads);
        return created;
    }();
    return *threads;
}

// The end of one piece of work, told from its thread: a signal, which Qt drops when its receiver
// has been deleted meanwhile, where a call into the receiver would reach a deleted object.
class Completion : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void done();
};

} // namespace

void startInBackground(std::function<void()> work)
{
    // An exception leaving a thread ends the host's process.
    pool().start([work = std::move(work)] { quietly(work); });
}

void startInBackground(std::function<void()> work, QObject* context, std::function<void()> then)
{
    auto completion = std::make_shared<Completion>();
    QObject::connect(completion.get(), &Completion::done, context, std::move(then), Qt::QueuedConnection);
    // Sent and deleted on the worker thread: it belongs to none.
    completion->moveToThread(nullptr);
    startInBackground([work = std::move(work), completion] {
        quietly(work);
        Q_EMIT completion->done();
    });
}

bool waitForBackgroundWork(int timeoutMs)
{
    return pool().waitForDone(timeoutMs);
}

} // namespace fast

#include "BackgroundWork.moc"
