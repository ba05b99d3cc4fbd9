#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace Poco {
class ThreadPool;
namespace Net {
class HTTPServer;
class HTTPRequestHandlerFactory;
class HTTPServerRequest;
class HTTPServerResponse;
} // namespace Net
} // namespace Poco

namespace emulator {

// How an answer leaves the server: whole, or broken on the wire the ways a failing service
// breaks a connection.
enum class Delivery {
    Whole,
    // Content-Length announces the whole body, half of it goes out, then the connection closes.
    TruncatedBody,
    // No answer at all: the connection is reset (SO_LINGER 0).
    ResetConnection,
};

// Sends body on response, whose status and headers the caller has set, as delivery has it.
// The request body must have been read, or closing the socket would reset it instead.
void sendBody(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response, const std::string& body,
              Delivery delivery);

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
    // Closes the port and wakes answers held back by holdBack(). Not from a handler: it waits
    // for the handlers to end.
    void stop();
    bool isRunning() const;
    unsigned short port() const { return m_port; }

    // Waits delayMs for a handler; false when the server stopped meanwhile.
    bool holdBack(int delayMs);
    // For a handler that plays the service dying under it: stops the server from a thread of
    // its own and returns once the port is closed, so that the client's next request is refused
    // rather than left waiting. The handler then drops its answer; start() brings the server back.
    void stopUnderHandler();

private:
    void joinStopper();

    unsigned short m_port;
    std::unique_ptr<Poco::ThreadPool> m_threads;
    std::unique_ptr<Poco::Net::HTTPServer> m_server;
    // start() and stop() may now run on two threads at once.
    std::mutex m_lifecycle;
    std::mutex m_stopperMutex;
    std::thread m_stopper;
    mutable std::mutex m_mutex;
    std::condition_variable m_stateChanged;
    bool m_running = false;
    bool m_listening = false;
};

} // namespace emulator
