#pragma once

#include <korvane/korvane_export.h>

#include <QString>

#include <functional>

// The host's message bus. The library sends diagnostics here; the host decides where they go.
class KORVANE_EXPORT MDEventBus
{
public:
    // The kinds of message the library sends. A message's kind is an int: hosts may send others.
    enum Kind : int {
        // Something failed, in words the user also sees.
        Error = 1,
        // What the library did, for whoever looks into a problem.
        Trace = 3,
        // Something the user should know that is not a failure.
        Information = 4,
    };

    using Listener = std::function<void(int kind, const QString& text)>;

    // Delivers the message to every listener, on the calling thread, in the order they were
    // added. Without listeners the message goes nowhere. Deliveries from different threads take
    // turns, so a listener must not wait for another thread that may be sending (hand the text
    // over with a queued call instead).
    static void sendMessage(int kind, const QString& text, bool popup);

    // Returns an id for removeListener. Safe from any thread.
    static int addListener(Listener listener);

    // Once this returns, the listener is not called again, except by a delivery that is under
    // way on the calling thread itself (a listener may remove itself).
    static void removeListener(int id);

    MDEventBus() = delete;
};
