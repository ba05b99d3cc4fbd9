#pragma once

#include <fast/fastpanel_export.h>
#include <fast/client/VdsDescriptors.h>

#include <Poco/JSON/Object.h>

#include <vector>

// Internal to the library (exported for the tests): it takes a POCO object, which no installed
// header may name, since a host builds without POCO.
namespace fast {

// The first record in [first, last) whose vdsId equals the entry's "vdsId" as text; last when
// none does. Linear: parseVdsInfos itself looks records up through an index.
FASTPANEL_EXPORT std::vector<VdsInfo>::iterator findVdsInfo(std::vector<VdsInfo>::iterator first,
                                                            std::vector<VdsInfo>::iterator last,
                                                            const Poco::JSON::Object::Ptr& fileEntry);

} // namespace fast
