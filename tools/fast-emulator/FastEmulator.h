#pragma once

#include "FastService.h"
#include "LoopbackEmulator.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Poco {
namespace Util {
class Timer;
}
} // namespace Poco

namespace emulator {

struct EmulatorOptions
{
    // 0 picks a free port at the first start; later starts reuse the port.
    unsigned short port = 0;
    std::string driveDir;
    std::string version = "2.0.0";
    bool pluginInstalled = true;
    int linkDelayMs = 50;
    std::string stateFile;
};

struct LoggedRequest
{
    std::string method;
    // Path and query, as sent.
    std::string target;
    std::string body;
};

// Injected misbehaviour for one route. A status answers at once, without touching the
// service's state; a delay holds the answer back; a body replaces whatever the answer held.
// A truncated body still lets the service act on the request, as when it fails while answering;
// a reset connection or a stopping service drops the request unseen.
struct Fault
{
    std::optional<int> status;
    int delayMs = 0;
    std::optional<std::string> body;
    Delivery delivery = Delivery::Whole;
    // The whole emulator stops once the delay is over, as a killed service does: the port
    // closes and this request goes unanswered. start() brings it back with its state.
    bool stopsService = false;
};

// What the HTTP layer sends back for one request.
struct Answer
{
    Reply reply;
    Delivery delivery = Delivery::Whole;
};

// The FAST service on 127.0.0.1 over real HTTP, for tests, benchmarks and the demo.
class FastEmulator : public LoopbackEmulator
{
public:
    explicit FastEmulator(EmulatorOptions options);
    ~FastEmulator() override;

    std::string host() const { return "127.0.0.1"; }

    std::vector<LoggedRequest> requests() const;
    void clearRequests();

    // The fault applies to requests of this method whose path begins with pathPrefix; the
    // longest matching prefix wins.
    void setFault(const std::string& method, const std::string& pathPrefix, const Fault& fault);
    void clearFaults();

    FastService& service() { return m_service; }

    // For the HTTP layer; a connection reset when the emulator stopped while holding it back.
    Answer answer(const std::string& method, const std::string& target, const std::string& body);

protected:
    Poco::Net::HTTPRequestHandler* newHandler() override;

private:
    std::optional<Fault> faultFor(const std::string& method, const std::string& path) const;
    void scheduleLink(const std::string& linkFile, const std::string& driveFile);

    EmulatorOptions m_options;
    std::unique_ptr<Poco::Util::Timer> m_linkTimer;
    FastService m_service;

    mutable std::mutex m_mutex;
    std::vector<LoggedRequest> m_requests;
    struct RouteFault
    {
        std::string method;
        std::string pathPrefix;
        Fault fault;
    };
    std::vector<RouteFault> m_faults;
};

} // namespace emulator
