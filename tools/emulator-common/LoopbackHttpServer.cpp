#include "LoopbackHttpServer.h"

#include <Poco/Net/HTTPRequestHandlerFactory.h>
#include <Poco/Net/HTTPServer.h>
#include <Poco/Net/HTTPServerParams.h>
#include <Poco/Net/HTTPServerRequestImpl.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/ThreadPool.h>

#include <algorithm>
#include <chrono>
#include <ostream>

namespace emulator {

namespace {

// Each kept-alive connection holds a thread: room for a client's own connections and for an
// HTTP/2 front's connections (one per stream in flight) at once.
constexpr int kMostConnections = 192;

} // namespace

void sendBody(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response, const std::string& body,
              Delivery delivery)
{
    Poco::Net::StreamSocket& socket = static_cast<Poco::Net::HTTPServerRequestImpl&>(request).socket();
    switch (delivery) {
    case Delivery::Whole:
        response.setContentLength(static_cast<std::streamsize>(body.size()));
        response.send() << body;
        return;
    case Delivery::TruncatedBody: {
        // Even an empty body is announced one byte longer than what comes.
        const std::size_t sent = body.size() / 2;
        response.setContentLength(static_cast<std::streamsize>(std::max(body.size(), sent + 1)));
        response.setKeepAlive(false);
        std::ostream& out = response.send();
        out.write(body.data(), static_cast<std::streamsize>(sent));
        out.flush();
        socket.close();
        return;
    }
    case Delivery::ResetConnection:
        socket.setLinger(true, 0);
        socket.close();
        return;
    }
}

LoopbackHttpServer::LoopbackHttpServer(unsigned short port) : m_port(port)
{
}

LoopbackHttpServer::~LoopbackHttpServer()
{
    stop();
    joinStopper();
}

void LoopbackHttpServer::start(Poco::Net::HTTPRequestHandlerFactory* factory)
{
    const Poco::Net::HTTPRequestHandlerFactory::Ptr handlers(factory);
    joinStopper();
    const std::lock_guard<std::mutex> lifecycle(m_lifecycle);
    if (isRunning())
        return;
    Poco::Net::ServerSocket socket;
    socket.bind(Poco::Net::SocketAddress("127.0.0.1", m_port), true);
    socket.listen(64);
    m_port = socket.address().port();

    auto params = new Poco::Net::HTTPServerParams;
    // One thread per open connection: a client keeps its idle connections alive (the OSDU search
    // up to 64 of them), and a connection beyond the threads waits for one to close.
    params->setMaxThreads(kMostConnections);
    params->setMaxQueued(256);
    params->setKeepAlive(true);
    m_threads = std::make_unique<Poco::ThreadPool>(2, kMostConnections);
    m_server = std::make_unique<Poco::Net::HTTPServer>(handlers, *m_threads, socket, params);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = true;
        m_listening = true;
    }
    m_server->start();
}

void LoopbackHttpServer::stop()
{
    const std::lock_guard<std::mutex> lifecycle(m_lifecycle);
    if (!m_server)
        return;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = false;
    }
    m_stateChanged.notify_all();
    m_server->stopAll(true);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_listening = false;
    }
    m_stateChanged.notify_all();
    m_server.reset();
    m_threads->joinAll();
    m_threads.reset();
}

bool LoopbackHttpServer::isRunning() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_running;
}

bool LoopbackHttpServer::holdBack(int delayMs)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_stateChanged.wait_for(lock, std::chrono::milliseconds(delayMs), [this] { return !m_running; });
}

void LoopbackHttpServer::stopUnderHandler()
{
    {
        std::lock_guard<std::mutex> lock(m_stopperMutex);
        if (!m_stopper.joinable())
            m_stopper = std::thread([this] { stop(); });
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    m_stateChanged.wait(lock, [this] { return !m_listening; });
}

void LoopbackHttpServer::joinStopper()
{
    std::thread stopper;
    {
        std::lock_guard<std::mutex> lock(m_stopperMutex);
        stopper.swap(m_stopper);
    }
    if (stopper.joinable())
        stopper.join();
}

} // namespace emulator
