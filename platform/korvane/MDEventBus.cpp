#include <korvane/MDEventBus.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace {

struct Registration
{
    int id;
    MDEventBus::Listener listener;
};

// One recursive lock serialises deliveries and changes: a listener may send a message or
// remove a listener from inside a delivery, and removeListener waits for deliveries under
// way on other threads, so a removed listener's captures may be destroyed right after.
struct Registry
{
    std::recursive_mutex mutex;
    std::vector<Registration> registrations;
    int nextId = 1;
};

Registry& registry()
{
    static Registry instance;
    return instance;
}

} // namespace

void MDEventBus::sendMessage(int kind, const QString& text, bool /*popup*/)
{
    Registry& bus = registry();
    std::lock_guard<std::recursive_mutex> lock(bus.mutex);
    // Registrations stay sorted by id. Going by the last id delivered, rather than by an
    // iterator, keeps the walk valid when a listener adds or removes listeners.
    int lastDelivered = 0;
    for (;;) {
        const auto next = std::upper_bound(bus.registrations.begin(), bus.registrations.end(), lastDelivered,
                                           [](int id, const Registration& registration) {
                                               return id < registration.id;
                                           });
        if (next == bus.registrations.end())
            return;
        lastDelivered = next->id;
        const Listener listener = next->listener; // the registration may go while it runs
        listener(kind, text);
    }
}

int MDEventBus::addListener(Listener listener)
{
    Registry& bus = registry();
    std::lock_guard<std::recursive_mutex> lock(bus.mutex);
    const int id = bus.nextId++;
    bus.registrations.push_back({id, std::move(listener)});
    return id;
}

void MDEventBus::removeListener(int id)
{
    Registry& bus = registry();
    std::lock_guard<std::recursive_mutex> lock(bus.mutex);
    for (auto it = bus.registrations.begin(); it != bus.registrations.end(); ++it) {
        if (it->id == id) {
            bus.registrations.erase(it);
            return;
        }
    }
}
