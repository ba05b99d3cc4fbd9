#pragma once

#include <fast/fastpanel_export.h>

#include <QString>

#include <chrono>
#include <functional>

// Internal to the library (exported for the tests): how the mount dialog moves the link file
// that FAST writes into the project folder.
namespace fast {

enum class MoveAttempt {
    Moved,
    // The source is not there yet (FAST writes it a while after the mount) or another program
    // holds it: worth another try.
    NotYet,
    // Anything else, such as a target that exists or a folder that cannot be written.
    Failed,
};

using FileMover = std::function<MoveAttempt(const QString& source, const QString& target)>;

// One move with the platform's own call: never a copy, and never over an existing file, except
// the source itself under another case where the file system is case-blind.
FASTPANEL_EXPORT MoveAttempt moveFileOnce(const QString& source, const QString& target);

// Tries attempt every 10 ms while it answers NotYet, for at most patience by the clock and until
// abandoned (when given) says so; true once moved. The attempt is a parameter so that a file held
// by another program can be played.
FASTPANEL_EXPORT bool moveFileWhenFree(const QString& source, const QString& target, std::chrono::milliseconds patience,
                                       const FileMover& attempt = moveFileOnce,
                                       const std::function<bool()>& abandoned = {});

} // namespace fast
