// A session with the FAST emulator's service, without the HTTP server around it: requests
// separated by lines "--", each a request line "METHOD TARGET [VERSION]", header lines that are
// passed over, a blank line and the body. "{vdsId}" and "{fileId}" stand for the ids the
// service handed out last, which no input could guess.

#include "FuzzInput.h"

#include <FastService.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

// The virtual-drive folder, one per fuzzer process, removed at exit.
class DriveFolder
{
public:
    DriveFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "fast-service-fuzz.XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            std::abort();
        m_path = pattern;
    }
    ~DriveFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    DriveFolder(const DriveFolder&) = delete;
    DriveFolder& operator=(const DriveFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    // Mounts left by one input must not answer 409 to the next.
    void empty() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            std::filesystem::remove_all(entry.path());
    }

private:
    std::filesystem::path m_path;
};

const DriveFolder& drive()
{
    static const DriveFolder folder;
    return folder;
}

struct Request
{
    std::string method;
    std::string target;
    std::string body;
};

Request readRequest(const std::string& text)
{
    Request request;
    const auto [requestLine, rest] = fuzz::firstLine(text);
    const std::size_t space = requestLine.find(' ');
    request.method = requestLine.substr(0, space);
    if (space != std::string::npos)
        request.target = requestLine.substr(space + 1, requestLine.find(' ', space + 1) - space - 1);
    const std::size_t bodyStart = rest.find("\n\n");
    if (rest.compare(0, 1, "\n") == 0)
        request.body = rest.substr(1);
    else if (bodyStart != std::string::npos)
        request.body = rest.substr(bodyStart + 2);
    return request;
}

void replaceAll(std::string& text, const std::string& placeholder, const std::string& value)
{
    for (std::size_t at = text.find(placeholder); at != std::string::npos;
         at = text.find(placeholder, at + value.size()))
        text.replace(at, placeholder.size(), value);
}

// Enough for every route and then some, without letting one input run for long.
constexpr std::size_t MaxRequests = 32;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    emulator::FastService::Config config;
    config.driveDir = drive().path().string();
    emulator::FastService service(config, [](const std::string&, const std::string&) {});

    const std::vector<std::string> pieces = fuzz::splitAtLines(fuzz::text(data, size), "--");
    for (std::size_t i = 0; i < pieces.size() && i < MaxRequests; ++i) {
        Request request = readRequest(pieces[i]);
        const auto volumes = service.volumes();
        const auto files = service.files();
        for (std::string* part : {&request.target, &request.body}) {
            if (!volumes.empty())
                replaceAll(*part, "{vdsId}", volumes.back().id);
            if (!files.empty())
                replaceAll(*part, "{fileId}", files.back().id);
        }
        service.handle(request.method, request.target, request.body);
    }
    drive().empty();
    return 0;
}
