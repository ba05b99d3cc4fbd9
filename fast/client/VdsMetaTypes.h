#pragma once

#include <fast/client/VdsDescriptors.h>

#include <QMetaType>

#include <string>
#include <vector>

// The records travel in signals, across threads too.
Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(fast::VdsFile)
Q_DECLARE_METATYPE(fast::VdsModel)
Q_DECLARE_METATYPE(std::vector<fast::VdsFile>)
