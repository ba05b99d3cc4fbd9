#include "Http2Front.h"

#include <Poco/Net/IPAddress.h>
#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/SocketAddress.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/Path.h>
#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <Poco/Process.h>
#include <Poco/StreamCopier.h>
#include <Poco/TemporaryFile.h>
#include <Poco/Thread.h>

#include <fstream>
#include <vector>

namespace emulator {

namespace {

constexpr int kListenWaitMs = 10000;

unsigned short freePort(const Poco::Net::IPAddress& address)
{
    Poco::Net::ServerSocket socket(Poco::Net::SocketAddress(address, 0));
    return socket.address().port();
}

} // namespace

Http2Front::Http2Front(unsigned short backendPort, std::string host, Offer offer)
    : m_backendPort(backendPort), m_host(std::move(host)), m_offer(offer)
{
}

Http2Front::~Http2Front()
{
    if (m_process) {
        try {
            Poco::Process::kill(*m_process);
            m_process->wait();
        } catch (const Poco::Exception&) {
        }
    }
}

std::string Http2Front::certificateFile() const
{
    return m_folder ? Poco::Path(m_folder->path(), "front.crt").toString() : std::string();
}

bool Http2Front::start()
{
    Poco::Net::IPAddress address;
    const bool named = !Poco::Net::IPAddress::tryParse(m_host, address);
    try {
        // Given a name, nghttpx wants an IPv6 address for it too, which a name from /etc/hosts
        // seldom has; clients try each address the name has until one answers.
        if (named)
            address = Poco::Net::SocketAddress(m_host, 0).host();
    } catch (const Poco::Exception& failure) {
        m_failure = "the name " + m_host + " does not resolve to an address: " + failure.displayText();
        return false;
    }
    try {
        m_folder = std::make_unique<Poco::TemporaryFile>();
        m_folder->createDirectories();
        const std::string key = Poco::Path(m_folder->path(), "front.key").toString();
        // Not the machine's configuration: only what is given here.
        const std::string configuration = Poco::Path(m_folder->path(), "nghttpx.conf").toString();
        std::ofstream(configuration).flush();
        // What openssl says along the way is of no interest; whether it made the files is.
        Poco::Pipe said;
        Poco::ProcessHandle openssl =
            Poco::Process::launch("openssl",
                                  {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                                   "-nodes", "-keyout", key, "-out", certificateFile(), "-days", "1", "-subj",
                                   "/CN=" + m_host, "-addext",
                                   std::string("subjectAltName=") + (named ? "DNS:" : "IP:") + m_host},
                                  nullptr, &said, &said);
        Poco::PipeInputStream saidStream(said);
        std::string ignored;
        Poco::StreamCopier::copyToString(saidStream, ignored);
        if (openssl.wait() != 0) {
            m_failure = "openssl could not make a certificate";
            return false;
        }
        // Taken back from the system just before nghttpx binds it: nobody else asks for it meanwhile.
        m_port = freePort(address);
        const std::string backend = std::to_string(m_backendPort);
        std::vector<std::string> arguments{"--conf=" + configuration,
                                           "--frontend=" + address.toString() + "," + std::to_string(m_port),
                                           "--backend=127.0.0.1," + backend,
                                           "--backend-connections-per-host=100",
                                           "--workers=1",
                                           "--no-ocsp",
                                           "--errorlog-file=" + Poco::Path(m_folder->path(), "error.log").toString()};
        if (m_offer == Offer::Http11Only)
            arguments.emplace_back("--npn-list=http/1.1");
        arguments.insert(arguments.end(), {key, certificateFile()});
        m_process = std::make_unique<Poco::ProcessHandle>(Poco::Process::launch("nghttpx", arguments));
        for (int waited = 0; waited < kListenWaitMs; waited += 20) {
            try {
                Poco::Net::StreamSocket probe(Poco::Net::SocketAddress(address, m_port));
                return true;
            } catch (const Poco::Exception&) {
                if (!Poco::Process::isRunning(*m_process))
                    break;
                Poco::Thread::sleep(20);
            }
        }
        m_failure = "nghttpx did not listen on " + address.toString() + " port " + std::to_string(m_port);
    } catch (const Poco::Exception& failure) {
        m_failure = "nghttpx could not be started: " + failure.displayText();
    }
    return false;
}

} // namespace emulator
