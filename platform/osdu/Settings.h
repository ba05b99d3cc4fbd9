#pragma once

#include <osdu/osdu_export.h>

#include <string>

namespace osdu {

// The text stored under "group/key" in the host application's settings store (a
// default-constructed QSettings), or defaultValue when the key is absent. Read afresh at every
// call; safe from any thread.
OSDU_EXPORT std::string getSettingValue(const std::string& group, const std::string& key,
                                        const std::string& defaultValue);

} // namespace osdu
