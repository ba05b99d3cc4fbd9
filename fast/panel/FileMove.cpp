#include <fast/panel/FileMove_p.h>

#include <QDir>
#include <QFileInfo>

#include <thread>

#ifdef Q_OS_WIN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#endif

namespace fast {

namespace {

constexpr std::chrono::milliseconds kRetryInterval{10};

} // namespace

#ifdef Q_OS_WIN

MoveAttempt moveFileOnce(const QString& source, const QString& target)
{
    const QString from = QDir::toNativeSeparators(source);
    const QString to = QDir::toNativeSeparators(target);
    // Without MOVEFILE_COPY_ALLOWED a move to another volume fails rather than copies; without
    // MOVEFILE_REPLACE_EXISTING an existing target stays. A case variant of the source itself is
    // the same file to NTFS, and the move renames it.
    if (MoveFileExW(reinterpret_cast<LPCWSTR>(from.utf16()), reinterpret_cast<LPCWSTR>(to.utf16()), 0))
        return MoveAttempt::Moved;
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    // The host, a virus scanner or FAST itself may still have the link open.
    case ERROR_SHARING_VIOLATION:
    case ERROR_ACCESS_DENIED:
        return MoveAttempt::NotYet;
    default:
        return MoveAttempt::Failed;
    }
}

#else

MoveAttempt moveFileOnce(const QString& source, const QString& target)
{
    namespace fs = std::filesystem;
    const fs::path from(QFile::encodeName(source).toStdString());
    const fs::path to(QFile::encodeName(target).toStdString());
    std::error_code error;
    if (!fs::exists(from, error))
        return QFileInfo(source).absoluteDir().exists() ? MoveAttempt::NotYet : MoveAttempt::Failed;
    // rename() would replace an existing target; Windows keeps it, and so does this move.
    if (fs::exists(to, error) && !fs::equivalent(from, to, error))
        return MoveAttempt::Failed;
    if (std::rename(from.c_str(), to.c_str()) == 0)
        return MoveAttempt::Moved;
    return errno == EBUSY || errno == ETXTBSY ? MoveAttempt::NotYet : MoveAttempt::Failed;
}

#endif

bool moveFileWhenFree(const QString& source, const QString& target, std::chrono::milliseconds patience,
                      const FileMover& attempt, const std::function<bool()>& abandoned)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        switch (attempt(source, target)) {
        case MoveAttempt::Moved:
            return true;
        case MoveAttempt::Failed:
            return false;
        case MoveAttempt::NotYet:
            break;
        }
        if (std::chrono::steady_clock::now() >= deadline || (abandoned && abandoned()))
            return false;
        std::this_thread::sleep_for(kRetryInterval);
    }
}

} // namespace fast
