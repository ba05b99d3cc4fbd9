#include <osdu/RequestGovernor.h>

#include <algorithm>

namespace osdu {

RequestGovernor::RequestGovernor(int mostInFlight, Clock::duration budget)
    : m_deadline(Clock::now() + budget), m_most(std::max(1, mostInFlight)), m_limit(m_most)
{
}

void RequestGovernor::cancel()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_cancelled = true;
    }
    m_changed.notify_all();
}

bool RequestGovernor::cancelled() const
{
    return m_cancelled.load();
}

void RequestGovernor::setMostInFlight(int mostInFlight)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_most = std::max(1, mostInFlight);
        m_limit = m_most;
    }
    m_changed.notify_all();
}

int RequestGovernor::inFlightLimit() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_limit;
}

std::uint64_t RequestGovernor::enter()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const bool turn = m_changed.wait_until(lock, m_deadline, [this] { return m_cancelled || m_inFlight < m_limit; });
    if (!turn || m_cancelled)
        return 0;
    ++m_inFlight;
    return m_nextTicket++;
}

void RequestGovernor::leave(std::uint64_t ticket, int status)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        --m_inFlight;
        note(ticket, status);
    }
    m_changed.notify_all();
}

std::uint64_t RequestGovernor::again(std::uint64_t ticket, int status)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        note(ticket, status);
        // The same ticket: turned away again, it is still of the round that was cut.
        if (!m_cancelled && Clock::now() < m_deadline)
            return ticket;
        --m_inFlight;
    }
    m_changed.notify_all();
    return 0;
}

void RequestGovernor::note(std::uint64_t ticket, int status)
{
    if (status == 429) {
        if (ticket > m_lastCutAt && m_roundOver) {
            m_limit = std::max(1, m_limit / 2);
            m_lastCutAt = m_nextTicket - 1;
            m_roundOver = false;
        }
    } else if (status >= 200 && status < 300) {
        if (ticket > m_lastCutAt)
            m_roundOver = true;
        if (m_limit < m_most)
            ++m_limit;
    }
}

bool RequestGovernor::pause(std::chrono::milliseconds delay)
{
    const Clock::time_point until = Clock::now() + delay;
    if (until > m_deadline)
        return false;
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_until(lock, until, [this] { return m_cancelled.load(); });
    return !m_cancelled;
}

} // namespace osdu
