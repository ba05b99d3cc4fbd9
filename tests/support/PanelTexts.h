#pragma once

#include <QString>

#include <string>

inline QString q(const std::string& text)
{
    return QString::fromStdString(text);
}

// What the VDS pages tell the user when a mount goes wrong, word for word.
inline const QString kRegistrationBox = QStringLiteral(
    "Unable to register VDS: Korvane™ was unable to register VDS in Bluware FAST™.\n"
    "Please refer to Bluware FAST™ log files to get more information.");
inline const QString kMountFailedBox = QStringLiteral(
    "Unable to mount VDS: Korvane™ was unable to mount VDS in Bluware FAST™.\n"
    "Please refer to Bluware FAST™ and Korvane™ log files to get more information.");
// %1 the status, %2 the body of FAST's answer to the mount request.
inline const QString kMountErrorBox = QStringLiteral("Bluware FAST™ mount error: Impossible to mount VDS file : cube\n"
                                                     "Request response :\n %1 : %2");
inline const QString kMountErrorLine = QStringLiteral("Bluware FAST™ error : impossible to mount vds file : %1 : %2");
// The emulator's body for an injected status.
inline const QString kInjectedBody = QStringLiteral(R"({"error":"Injected failure"})");
