#pragma once

// Internal to the library: the transfers of many threads on one thread of libcurl's multi
// interface.

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace osdu {

// Runs the transfers that threads hand it on one thread of its own, so that they share
// connections: over HTTP/2 one connection to a host carries them all as streams, as many at
// once as the server allows; over HTTP/1.1 at most kMostConnectionsPerHost connections are
// opened to a host and the other transfers wait for one of them.
class CurlMultiplexer
{
public:
    static constexpr long kMostConnectionsPerHost = 16;

    CurlMultiplexer();
    // Transfers still running fail as abandoned.
    ~CurlMultiplexer();
    CurlMultiplexer(const CurlMultiplexer&) = delete;
    CurlMultiplexer& operator=(const CurlMultiplexer&) = delete;

    // Runs the transfer of easy, a configured libcurl easy handle that nothing else uses
    // meanwhile, and returns its CURLcode; blocks until it has ended.
    int perform(void* easy);

private:
    struct Transfer
    {
        void* easy = nullptr;
        int result = 0;
        bool done = false;
        // Its own, so that an ended transfer wakes its thread alone, not every waiting one.
        std::condition_variable finished;
    };

    void run();
    void finish(Transfer& transfer, int result);

    void* m_multi = nullptr;
    std::mutex m_mutex;
    std::deque<Transfer*> m_arriving;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace osdu
