#pragma once

#include <functional>
#include <string>

namespace emulator {

// An emulator program's run: blocks SIGINT and SIGTERM before any server thread starts, then
// calls serve, which starts its emulator, says where it listens and calls waitForStop; that
// returns once either signal arrives, saying "<program>: stopping". A Poco exception from serve
// is printed as "<program>: <text>" and gives the status 1; otherwise 0.
int serveUntilStopped(const std::string& program,
                      const std::function<void(const std::function<void()>& waitForStop)>& serve);

} // namespace emulator
