#pragma once

#include <osdu/osdu_export.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

namespace osdu {

// A request about to be sent again, for the caller's log.
struct RetryNote
{
    std::string path;
    // The attempt that failed, from 1, and the most there will be.
    int attempt = 0;
    int attempts = 0;
    // 0 when the connection was cut.
    int status = 0;
    long delayMs = 0;
};

// Governs the requests of one piece of work, a search, on a platform that may be busy: how many
// are in flight at once (halved when the platform says it is overloaded, grown back one by one
// as answers succeed), how long all of them together may take, and whether the work was
// cancelled. Thread-safe.
class OSDU_EXPORT RequestGovernor
{
public:
    using Clock = std::chrono::steady_clock;

    RequestGovernor(int mostInFlight, Clock::duration budget);

    // Wakes every request waiting for its turn or its retry; transfers in flight are abandoned
    // at their next progress check, within about a second.
    void cancel();
    bool cancelled() const;
    Clock::time_point deadline() const { return m_deadline; }

    void setMostInFlight(int mostInFlight);
    int inFlightLimit() const;

    // Waits for a request's turn; its ticket, or 0 when the work was cancelled or is out of time.
    std::uint64_t enter();
    // The request's answer. Overload answers halve the limit once a round: a round ends when a
    // request sent after the last cut gets through, a round trip later. Answers turned away at
    // the door come back at once, many of them before the lower limit can tell: they count once.
    void leave(std::uint64_t ticket, int status);
    // The request's answer, when the platform asks for it again at once: it keeps its place in
    // flight and goes out again before anything waiting for a turn. Its ticket, or 0 as enter.
    std::uint64_t again(std::uint64_t ticket, int status);
    // Waits before a retry; false when cancelled, or when the deadline comes first.
    bool pause(std::chrono::milliseconds delay);

    // Told before each retry; set before the first request.
    std::function<void(const RetryNote&)> onRetry;

private:
    void note(std::uint64_t ticket, int status);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    const Clock::time_point m_deadline;
    int m_most;
    int m_limit;
    int m_inFlight = 0;
    std::uint64_t m_nextTicket = 1;
    std::uint64_t m_lastCutAt = 0;
    // A request sent after the last cut got through: the next overload answer cuts again.
    bool m_roundOver = true;
    // Read by every transfer's progress check, many times a second: no lock for it.
    std::atomic<bool> m_cancelled{false};
};

} // namespace osdu
