#pragma once

#include "LoopbackHttpServer.h"

namespace Poco {
namespace Net {
class HTTPRequestHandler;
} // namespace Net
} // namespace Poco

namespace emulator {

// What each emulator is to the tests, benchmarks and programs that run it: a service on
// 127.0.0.1 that starts, stops and starts again on the same port. The emulator itself gives
// the handler of each request.
class LoopbackEmulator
{
public:
    // 0 picks a free port at the first start; later starts reuse the port.
    explicit LoopbackEmulator(unsigned short port);
    virtual ~LoopbackEmulator();
    LoopbackEmulator(const LoopbackEmulator&) = delete;
    LoopbackEmulator& operator=(const LoopbackEmulator&) = delete;

    // Throws Poco::Net::NetException when the port cannot be bound.
    void start();
    // Closes the port; answers held back by a delay are dropped. An emulator's destructor calls
    // it first, so that no handler outlives what it calls into.
    void stop();
    bool isRunning() const;
    unsigned short port() const;

protected:
    // Called on the server's threads, once a request.
    virtual Poco::Net::HTTPRequestHandler* newHandler() = 0;
    LoopbackHttpServer& http() { return m_http; }

private:
    LoopbackHttpServer m_http;
};

} // namespace emulator
