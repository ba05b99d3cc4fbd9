#pragma once

#include <fast/fastpanel_export.h>

namespace fast {

// Waits until none of the library's background work runs any more: the connection check of every
// panel, the OSDU searches with their record fetches and the mount dialog's wait for its link file.
// True once all of it has ended and its threads are gone, false when timeoutMs ran out first (a
// negative timeoutMs waits for as long as it takes).
//
// A host that unloads the library calls it after deleting every panel and before freeing the
// library: a panel's destruction asks its work to stop, and the work ends on its own soon after
// (the connection check at once, a search within about a second, a link file's rename after its
// current try). The calling thread blocks; its event loop does not run meanwhile, so nothing of
// the library's is called back into the caller, and results of the ended work that are still
// queued for the deleted panel are dropped with it by Qt. Work of a panel that still lives, such
// as its connection check, does not end by itself, and the wait then runs out.
FASTPANEL_EXPORT bool waitForBackgroundWork(int timeoutMs);

} // namespace fast
