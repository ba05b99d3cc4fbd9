#pragma once

#include <functional>

class QObject;

// The one owner of the library's background work, so that a host can wait for all of it
// (waitForBackgroundWork) before it frees the library.
namespace fast {

// Runs work on one of the library's own threads; whatever it throws is traced and goes no further.
void startInBackground(std::function<void()> work);
// The same; once work has ended, then runs on context's thread, queued, unless context has been
// deleted by then.
void startInBackground(std::function<void()> work, QObject* context, std::function<void()> then);

} // namespace fast
