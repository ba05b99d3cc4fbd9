#pragma once

#include <fast/fastpanel_export.h>

#include <QString>

#include <string>

// Questions about FAST's virtual drive. A backslash counts as a separator on every platform,
// as on Windows, where the drive lives.
namespace fast {

// The drive's root: the "FAST/FAST_MOUNT_POINT" setting (default "K:"), cleaned, with forward
// slashes and no trailing separator. Read afresh at every call.
FASTPANEL_EXPORT QString mountPoint();

// Whether the cleaned path begins with the mount point, ignoring case. A plain prefix test on
// the text, kept so: a mount point "C:/mnt/fast" also takes "C:/mnt/fastest/x".
FASTPANEL_EXPORT bool isMountedInVirtualDrive(const QString& path);

// Whether the drive holds, directly under its root, an entry named like path's file without its
// last suffix, with the host project's extension ".kv".
FASTPANEL_EXPORT bool fileExistsInVirtualDrive(const QString& path);

// Whether the drive, a Windows drive, can hold a file of this name: not blank, none of
// / \ : * ? " < > | nor a control character (U+0000 to U+001F), not ending in a dot or a blank,
// and not a device name (CON, PRN, AUX, NUL, CONIN$, CONOUT$, COM1 to COM9, LPT1 to LPT9, COM and
// LPT with a superscript 1, 2 or 3), with or without an extension, in any case.
FASTPANEL_EXPORT bool driveCanHoldFileName(const QString& name);

// How two paths are told to name the same file: as Windows does (case-blind, drive letter
// included, either separator) or byte for byte; Native is the rule of the platform built for.
enum class PathRules {
    Exact,
    Windows,
#ifdef Q_OS_WIN
    Native = Windows,
#else
    Native = Exact,
#endif
};

// The one decision on path equality: two paths name the same file exactly when their keys are
// equal. A URL (scheme://...) names no file here and is its own key: a server tells its case.
FASTPANEL_EXPORT QString pathKey(const QString& path, PathRules rules = PathRules::Native);
FASTPANEL_EXPORT bool samePath(const QString& a, const QString& b, PathRules rules = PathRules::Native);

// An OSDU cloud path as the URL FAST accepts: "s3:" becomes "https:", the region between the
// first "s3" and ".amazonaws" goes, and one trailing "/" goes.
FASTPANEL_EXPORT std::string modifyVdsFilepath(const std::string& path);

} // namespace fast
