#pragma once

#include <QString>

#include <string>

namespace fast {

// Text from FAST, the OSDU platform or the settings, all UTF-8, as Qt holds it.
inline QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

} // namespace fast
