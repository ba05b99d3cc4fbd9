#pragma once

#include <QMetaType>

#include <string>

// What a host declares for itself when its tests read the library's std::string arguments out of
// a QSignalSpy; the library's headers leave it to them.
Q_DECLARE_METATYPE(std::string)
