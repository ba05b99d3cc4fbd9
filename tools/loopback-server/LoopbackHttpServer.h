#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

namespace Poco {
class ThreadPool;
namespace Net {
class HTTPServer;
class HTTPRequestHandlerFactory;
} // namespace Net
} // namespace Poco

namespace emulator {

// The HTTP server under each emulator: on 127.0.0.1 only, keep-alive, its own handler threads,
// which stop() joins so that no handler outlives the emulator it calls into.
class LoopbackHttpServer
{
public:
    // 0 picks a free port at the first start; later starts reuse the port.
    explicit LoopbackHttpServer(unsigned short port);
    ~LoopbackHttpServer();
    LoopbackHttpServer(const LoopbackHttpServer&) = delete;
    LoopbackHttpServer& operator=(const LoopbackHttpServer&) = delete;

    // Takes the factory over. Throws Poco::Net::NetException when the port cannot be bound.
    void start(Poco::Net::HTTPRequestHandlerFactory* factory);
    // Closes the port and wakes answers held back by holdBack().
    void stop();
    bool isRunning() const;
    unsigned short port() const { return m_port; }

    // Waits delayMs for a handler; false when the server stopped meanwhile.
    bool holdBack(int delayMs);

private:
    unsigned short m_port;
    std::unique_ptr<Poco::ThreadPool> m_threads;
    std::unique_ptr<Poco::Net::HTTPServer> m_server;
    mutable std::mutex m_mutex;
    std::condition_variable m_stopped;
    bool m_running = false;
};

} // namespace emulator
