// fast-emulator: the FAST service on loopback, for the demo and for host developers who work
// without the real service.

#include "FastEmulator.h"

#include <CommandLine.h>
#include <ServeUntilStopped.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace {

const char* const kUsage =
    "Usage: fast-emulator --port N --drive DIR [--version V] [--no-plugin] [--link-delay-ms N] [--state FILE]\n"
    "                     [--fault METHOD:PATH:WHAT[,WHAT...]]...\n"
    "\n"
    "Serves the FAST REST API (/api/v2/...) on 127.0.0.1:N until interrupted.\n"
    "  --port N           port to listen on (0 picks a free one; it is printed)\n"
    "  --drive DIR        folder that plays the virtual drive; a file mounted as NAME appears here as NAME.kv\n"
    "  --version V        version reported by GET /api/v2/about (default 2.0.0)\n"
    "  --no-plugin        behave as if the host's plug-in were not installed\n"
    "  --link-delay-ms N  how long after a mount the link file is written (default 50)\n"
    "  --state FILE       keep registrations and mounts in FILE across restarts\n"
    "  --fault METHOD:PATH:WHAT[,WHAT...]\n"
    "                     misbehave on requests of METHOD whose path begins with PATH (the longest\n"
    "                     PATH wins); WHAT is status=N (answer N, leaving the state alone),\n"
    "                     delay-ms=N (hold the answer back), truncate (announce the whole body, send\n"
    "                     half, close), reset (reset the connection unanswered), stop (stop serving\n"
    "                     after the delay, as a killed service) or body=TEXT (last: the rest is TEXT)\n"
    "  --help             this text\n";

struct RouteFault
{
    std::string method;
    std::string pathPrefix;
    emulator::Fault fault;
};

RouteFault routeFault(const emulator::CommandLine& line, const std::string& option)
{
    const auto bad = [&](const std::string& why) { line.fail("--fault " + option + ": " + why); };
    const std::size_t methodEnd = option.find(':');
    const std::size_t pathEnd = methodEnd == std::string::npos ? methodEnd : option.find(':', methodEnd + 1);
    if (pathEnd == std::string::npos)
        bad("expected METHOD:PATH:WHAT");
    RouteFault result{option.substr(0, methodEnd), option.substr(methodEnd + 1, pathEnd - methodEnd - 1), {}};
    if (result.method.empty() || result.pathPrefix.empty() || result.pathPrefix[0] != '/')
        bad("expected a method and a path that begins with /");
    std::string rest = option.substr(pathEnd + 1);
    while (!rest.empty()) {
        if (rest.compare(0, 5, "body=") == 0) {
            result.fault.body = rest.substr(5);
            break;
        }
        const std::size_t end = rest.find(',');
        const std::string what = rest.substr(0, end);
        rest = end == std::string::npos ? std::string() : rest.substr(end + 1);
        if (what.compare(0, 7, "status=") == 0)
            result.fault.status = static_cast<int>(line.number("--fault status", what.substr(7), 0, 999));
        else if (what.compare(0, 9, "delay-ms=") == 0)
            result.fault.delayMs = static_cast<int>(line.number("--fault delay-ms", what.substr(9), 0, 600000));
        else if (what == "truncate")
            result.fault.delivery = emulator::Delivery::TruncatedBody;
        else if (what == "reset")
            result.fault.delivery = emulator::Delivery::ResetConnection;
        else if (what == "stop")
            result.fault.stopsService = true;
        else
            bad("unknown fault \"" + what + "\"");
    }
    return result;
}

emulator::EmulatorOptions parse(int argc, char** argv, std::vector<RouteFault>& faults)
{
    emulator::CommandLine line(argc, argv, "fast-emulator", kUsage);
    emulator::EmulatorOptions options;
    bool havePort = false;
    while (line.next()) {
        const std::string& option = line.option();
        if (option == "--port") {
            options.port = static_cast<unsigned short>(line.number(0, 65535));
            havePort = true;
        } else if (option == "--drive") {
            options.driveDir = line.value();
        } else if (option == "--version") {
            options.version = line.value();
        } else if (option == "--no-plugin") {
            options.pluginInstalled = false;
        } else if (option == "--link-delay-ms") {
            options.linkDelayMs = static_cast<int>(line.number(0, 600000));
        } else if (option == "--state") {
            options.stateFile = line.value();
        } else if (option == "--fault") {
            faults.push_back(routeFault(line, line.value()));
        } else {
            line.fail("unknown option " + option);
        }
    }
    if (!havePort)
        line.fail("--port is required");
    if (options.driveDir.empty())
        line.fail("--drive is required");
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<RouteFault> faults;
    const emulator::EmulatorOptions options = parse(argc, argv, faults);

    return emulator::serveUntilStopped("fast-emulator", [&](const std::function<void()>& waitForStop) {
        emulator::FastEmulator fast(options);
        for (const RouteFault& route : faults)
            fast.setFault(route.method, route.pathPrefix, route.fault);
        fast.start();
        std::cout << "fast-emulator: listening on http://127.0.0.1:" << fast.port() << " (drive " << options.driveDir
                  << ")" << std::endl;
        waitForStop();
    });
}
