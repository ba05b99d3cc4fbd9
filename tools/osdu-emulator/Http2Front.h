#pragma once

#include <memory>
#include <string>

namespace Poco {
class ProcessHandle;
class TemporaryFile;
} // namespace Poco

namespace emulator {

// nghttpx before a loopback HTTP/1.1 server: HTTP/2 over TLS to its clients, with a certificate
// made for this front alone, which clients trust through certificateFile(). For tests and
// benchmarks of clients that multiplex. Clients reach it under host, an address or a name of this
// machine: it listens on the address the name stands for, and its certificate carries the name.
class Http2Front
{
public:
    // What the front offers its clients: HTTP/2, or HTTP/1.1 alone, as a front without it does.
    enum class Offer { Http2, Http11Only };

    explicit Http2Front(unsigned short backendPort, std::string host = "127.0.0.1", Offer offer = Offer::Http2);
    ~Http2Front();
    Http2Front(const Http2Front&) = delete;
    Http2Front& operator=(const Http2Front&) = delete;

    // Makes the certificate, starts nghttpx and waits until it listens; false, saying why in
    // failure(), when any of it did not work.
    bool start();
    const std::string& failure() const { return m_failure; }
    std::string baseUrl() const { return "https://" + m_host + ":" + std::to_string(m_port); }
    std::string certificateFile() const;

private:
    unsigned short m_backendPort;
    std::string m_host;
    Offer m_offer;
    unsigned short m_port = 0;
    std::unique_ptr<Poco::TemporaryFile> m_folder;
    std::unique_ptr<Poco::ProcessHandle> m_process;
    std::string m_failure;
};

} // namespace emulator
