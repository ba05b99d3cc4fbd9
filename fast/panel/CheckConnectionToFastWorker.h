#pragma once

#include <fast/fastpanel_export.h>

#include <QObject>
#include <QString>

#include <memory>

namespace fast {

class Fast;

// Watches the FAST service for as long as the panel lives: on its own thread it asks for the
// version and the host's plug-in, reports, and sleeps five seconds, until the thread is asked
// to stop. heartBeat() is its "done" signal, emitted once when the loop ends.
class FASTPANEL_EXPORT CheckConnectionToFastWorker : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned long PollIntervalMs = 5000;

    explicit CheckConnectionToFastWorker(std::shared_ptr<Fast> fast, QObject* parent = nullptr);
    ~CheckConnectionToFastWorker() override;

    // The polling loop; returns only when it ends. The sleep is not woken by an interruption
    // request, so the loop notices one up to a polling period late.
    void run();

Q_SIGNALS:
    void workFinished(bool serviceAvailable, bool korvanePluginAvailable, QString version);
    void heartBeat();

private:
    // One poll's requests and its workFinished; whatever it throws ends as "not available".
    void poll();

    std::shared_ptr<Fast> m_fast;
};

} // namespace fast
