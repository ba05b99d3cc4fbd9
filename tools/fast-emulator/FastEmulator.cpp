#include "FastEmulator.h"

#include <Poco/File.h>
#include <Poco/FileStream.h>
#include <Poco/Net/HTTPRequestHandler.h>
#include <Poco/Net/HTTPServerRequest.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/StreamCopier.h>
#include <Poco/Util/Timer.h>
#include <Poco/Util/TimerTask.h>

#include <chrono>

namespace emulator {

namespace {

class RequestHandler : public Poco::Net::HTTPRequestHandler
{
public:
    explicit RequestHandler(FastEmulator& emulator) : m_emulator(emulator) {}

    void handleRequest(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response) override
    {
        std::string body;
        Poco::StreamCopier::copyToString(request.stream(), body);
        const Answer answer = m_emulator.answer(request.getMethod(), request.getURI(), body);
        const Reply& reply = answer.reply;
        response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(reply.status));
        response.setContentType(
            !reply.body.empty() && (reply.body[0] == '{' || reply.body[0] == '[') ? "application/json" : "text/plain");
        sendBody(request, response, reply.body, answer.delivery);
    }

private:
    FastEmulator& m_emulator;
};

// FAST writes the link file in the project folder a while after it answers the mount.
class WriteLinkTask : public Poco::Util::TimerTask
{
public:
    WriteLinkTask(std::string linkFile, std::string driveFile)
        : m_linkFile(std::move(linkFile)), m_driveFile(std::move(driveFile))
    {
    }

    void run() override
    {
        try {
            Poco::FileOutputStream out(m_linkFile);
            out << m_driveFile << '\n';
        } catch (const Poco::Exception&) {
            // A folder that cannot be written gets no link, as with the real service.
        }
    }

private:
    std::string m_linkFile;
    std::string m_driveFile;
};

std::string pathOf(const std::string& target)
{
    return target.substr(0, target.find('?'));
}

} // namespace

FastEmulator::FastEmulator(EmulatorOptions options)
    : LoopbackEmulator(options.port), m_options(std::move(options)), m_linkTimer(std::make_unique<Poco::Util::Timer>()),
      m_service({m_options.driveDir, m_options.version, m_options.pluginInstalled, m_options.stateFile},
                [this](const std::string& linkFile, const std::string& driveFile) {
                    scheduleLink(linkFile, driveFile);
                })
{
}

FastEmulator::~FastEmulator()
{
    stop();
    m_linkTimer.reset();
}

Poco::Net::HTTPRequestHandler* FastEmulator::newHandler()
{
    return new RequestHandler(*this);
}

std::vector<LoggedRequest> FastEmulator::requests() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

void FastEmulator::clearRequests()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.clear();
}

void FastEmulator::setFault(const std::string& method, const std::string& pathPrefix, const Fault& fault)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_faults.push_back({method, pathPrefix, fault});
}

void FastEmulator::clearFaults()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_faults.clear();
}

Answer FastEmulator::answer(const std::string& method, const std::string& target, const std::string& body)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_requests.push_back({method, target, body});
    }
    const std::optional<Fault> fault = faultFor(method, pathOf(target));
    Answer dropped{{}, Delivery::ResetConnection};
    if (fault && fault->delayMs > 0 && !http().holdBack(fault->delayMs))
        return dropped;
    if (fault && fault->stopsService) {
        http().stopUnderHandler();
        return dropped;
    }
    if (fault && fault->delivery == Delivery::ResetConnection)
        return dropped;

    Answer answer;
    if (fault && fault->status)
        answer.reply = {*fault->status, "{\"error\":\"Injected failure\"}"};
    else
        answer.reply = m_service.handle(method, target, body);
    if (fault && fault->body)
        answer.reply.body = *fault->body;
    if (fault)
        answer.delivery = fault->delivery;
    return answer;
}

std::optional<Fault> FastEmulator::faultFor(const std::string& method, const std::string& path) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const RouteFault* best = nullptr;
    for (const RouteFault& candidate : m_faults) {
        if (candidate.method == method && path.compare(0, candidate.pathPrefix.size(), candidate.pathPrefix) == 0
            && (!best || candidate.pathPrefix.size() >= best->pathPrefix.size()))
            best = &candidate;
    }
    return best ? std::optional<Fault>(best->fault) : std::nullopt;
}

void FastEmulator::scheduleLink(const std::string& linkFile, const std::string& driveFile)
{
    const Poco::Clock due = Poco::Clock() + static_cast<Poco::Clock::ClockDiff>(m_options.linkDelayMs) * 1000;
    m_linkTimer->schedule(new WriteLinkTask(linkFile, driveFile), due);
}

} // namespace emulator
