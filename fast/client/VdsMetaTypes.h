#pragma once

#include <fast/fastpanel_export.h>
#include <fast/client/VdsDescriptors.h>

#include <QMetaType>

#include <string>
#include <vector>

// The records travel in signals, across threads too. The standard types in the same signals are
// registered by name inside the library (registerMetaTypes): a declaration here would clash
// with the host's own.
Q_DECLARE_METATYPE(fast::VdsFile)
Q_DECLARE_METATYPE(fast::VdsModel)

namespace fast {

// Makes every type that the library's signals carry known to queued connections; called by
// the pages as they are made, and safe to call again.
FASTPANEL_EXPORT void registerMetaTypes();

} // namespace fast
