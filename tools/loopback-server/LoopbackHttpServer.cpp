#include "LoopbackHttpServer.h"

#include <Poco/Net/HTTPRequestHandlerFactory.h>
#include <Poco/Net/HTTPServer.h>
#include <Poco/Net/HTTPServerParams.h>
#include <Poco/Net/ServerSocket.h>
#include <Poco/ThreadPool.h>

#include <chrono>

namespace emulator {

LoopbackHttpServer::LoopbackHttpServer(unsigned short port) : m_port(port) {}

LoopbackHttpServer::~LoopbackHttpServer()
{
    stop();
}

void LoopbackHttpServer::start(Poco::Net::HTTPRequestHandlerFactory* factory)
{
    const Poco::Net::HTTPRequestHandlerFactory::Ptr handlers(factory);
    if (isRunning())
        return;
    Poco::Net::ServerSocket socket;
    socket.bind(Poco::Net::SocketAddress("127.0.0.1", m_port), true);
    socket.listen(64);
    m_port = socket.address().port();

    auto params = new Poco::Net::HTTPServerParams;
    params->setMaxThreads(16);
    params->setMaxQueued(256);
    params->setKeepAlive(true);
    m_threads = std::make_unique<Poco::ThreadPool>(2, 16);
    m_server = std::make_unique<Poco::Net::HTTPServer>(handlers, *m_threads, socket, params);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = true;
    }
    m_server->start();
}

void LoopbackHttpServer::stop()
{
    if (!m_server)
        return;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = false;
    }
    m_stopped.notify_all();
    m_server->stopAll(true);
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
    return !m_stopped.wait_for(lock, std::chrono::milliseconds(delayMs), [this] { return !m_running; });
}

} // namespace emulator
