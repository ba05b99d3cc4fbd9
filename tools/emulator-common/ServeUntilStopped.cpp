#include "ServeUntilStopped.h"

#include <Poco/Exception.h>

#include <csignal>
#include <iostream>

#include <pthread.h>

namespace emulator {

int serveUntilStopped(const std::string& program,
                      const std::function<void(const std::function<void()>& waitForStop)>& serve)
{
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    try {
        serve([&program, &stopSignals] {
            int received = 0;
            sigwait(&stopSignals, &received);
            std::cout << program << ": stopping" << std::endl;
        });
    } catch (const Poco::Exception& failure) {
        std::cerr << program << ": " << failure.displayText() << std::endl;
        return 1;
    }
    return 0;
}

} // namespace emulator
