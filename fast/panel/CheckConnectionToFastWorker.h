#pragma once

#include <fast/fastpanel_export.h>

#include <QObject>
#include <QString>

#include <condition_variable>
#include <memory>
#include <mutex>

namespace fast {

class Fast;

// Watches the FAST service for as long as the panel lives: on a thread of the library's it asks
// for the version and the host's plug-in, reports, and waits five seconds, until it is asked to
// stop (stop(), or an interruption request to the QThread it lives on). heartBeat() is its "done"
// signal, emitted once when the loop ends.
class FASTPANEL_EXPORT CheckConnectionToFastWorker : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned long PollIntervalMs = 5000;

    explicit CheckConnectionToFastWorker(std::shared_ptr<Fast> fast, QObject* parent = nullptr);
    ~CheckConnectionToFastWorker() override;

    // The polling loop; returns only when it ends. A stop ends the wait between polls at once, an
    // interruption request within a tenth of a second; a poll under way is finished first.
    void run();
    // From any thread.
    void stop();

Q_SIGNALS:
    void workFinished(bool serviceAvailable, bool korvanePluginAvailable, QString version);
    void heartBeat();

private:
    // One poll's requests and its workFinished; whatever it throws ends as "not available".
    void poll();
    bool stopRequested();
    // Until the next poll is due or a stop is asked for.
    void waitForNextPoll();

    std::shared_ptr<Fast> m_fast;
    std::mutex m_stopMutex;
    std::condition_variable m_stopAsked;
    bool m_stopRequested = false;
};

} // namespace fast
