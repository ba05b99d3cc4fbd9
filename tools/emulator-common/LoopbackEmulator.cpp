#include "LoopbackEmulator.h"

#include <Poco/Net/HTTPRequestHandler.h>
#include <Poco/Net/HTTPRequestHandlerFactory.h>

#include <functional>

namespace emulator {

namespace {

class HandlerFactory : public Poco::Net::HTTPRequestHandlerFactory
{
public:
    explicit HandlerFactory(const std::function<Poco::Net::HTTPRequestHandler*()>& newHandler)
        : m_newHandler(newHandler)
    {
    }

    Poco::Net::HTTPRequestHandler* createRequestHandler(const Poco::Net::HTTPServerRequest&) override
    {
        return m_newHandler();
    }

private:
    std::function<Poco::Net::HTTPRequestHandler*()> m_newHandler;
};

} // namespace

LoopbackEmulator::LoopbackEmulator(unsigned short port) : m_http(port)
{
}

LoopbackEmulator::~LoopbackEmulator() = default;

void LoopbackEmulator::start()
{
    m_http.start(new HandlerFactory([this] { return newHandler(); }));
}

void LoopbackEmulator::stop()
{
    m_http.stop();
}

bool LoopbackEmulator::isRunning() const
{
    return m_http.isRunning();
}

unsigned short LoopbackEmulator::port() const
{
    return m_http.port();
}

} // namespace emulator
