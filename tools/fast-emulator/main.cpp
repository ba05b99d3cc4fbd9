// fast-emulator: the FAST service on loopback, for the demo and for host developers who work
// without the real service.

#include "FastEmulator.h"

#include <Poco/Exception.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

const char* const kUsage =
    "Usage: fast-emulator --port N --drive DIR [--version V] [--no-plugin] [--link-delay-ms N] [--state FILE]\n"
    "\n"
    "Serves the FAST REST API (/api/v2/...) on 127.0.0.1:N until interrupted.\n"
    "  --port N           port to listen on (0 picks a free one; it is printed)\n"
    "  --drive DIR        folder that plays the virtual drive; mounted files appear here\n"
    "  --version V        version reported by GET /api/v2/about (default 2.0.0)\n"
    "  --no-plugin        behave as if the host's plug-in were not installed\n"
    "  --link-delay-ms N  how long after a mount the link file is written (default 50)\n"
    "  --state FILE       keep registrations and mounts in FILE across restarts\n"
    "  --help             this text\n";

[[noreturn]] void usageError(const std::string& message)
{
    std::cerr << "fast-emulator: " << message << "\n\n" << kUsage;
    std::exit(2);
}

long number(const std::string& option, const std::string& text, long max)
{
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || value < 0 || value > max)
        usageError(option + " takes a whole number from 0 to " + std::to_string(max) + ", not \"" + text + "\"");
    return value;
}

emulator::EmulatorOptions parse(int argc, char** argv)
{
    emulator::EmulatorOptions options;
    bool havePort = false;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const auto value = [&]() -> std::string {
            if (i + 1 >= argc)
                usageError(option + " needs a value");
            return argv[++i];
        };
        if (option == "--help" || option == "-h") {
            std::cout << kUsage;
            std::exit(0);
        } else if (option == "--port") {
            options.port = static_cast<unsigned short>(number(option, value(), 65535));
            havePort = true;
        } else if (option == "--drive") {
            options.driveDir = value();
        } else if (option == "--version") {
            options.version = value();
        } else if (option == "--no-plugin") {
            options.pluginInstalled = false;
        } else if (option == "--link-delay-ms") {
            options.linkDelayMs = static_cast<int>(number(option, value(), 600000));
        } else if (option == "--state") {
            options.stateFile = value();
        } else {
            usageError("unknown option " + option);
        }
    }
    if (!havePort)
        usageError("--port is required");
    if (options.driveDir.empty())
        usageError("--drive is required");
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    const emulator::EmulatorOptions options = parse(argc, argv);

    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr); // before the server's threads start

    try {
        emulator::FastEmulator fast(options);
        fast.start();
        std::cout << "fast-emulator: listening on http://127.0.0.1:" << fast.port() << " (drive " << options.driveDir
                  << ")" << std::endl;
        int received = 0;
        sigwait(&stopSignals, &received);
        std::cout << "fast-emulator: stopping" << std::endl;
    } catch (const Poco::Exception& failure) {
        std::cerr << "fast-emulator: " << failure.displayText() << std::endl;
        return 1;
    }
    return 0;
}
