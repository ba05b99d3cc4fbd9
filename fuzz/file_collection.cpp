// A record's kind on the first line, then its JSON, through the record factory as the file
// collection search sets it up.

#include "FuzzInput.h"

#include <osdu/FileCollection.h>
#include <osdu/StorageRecordFactory.h>

#include <cstdlib>
#include <stdexcept>

namespace {

const osdu::StorageRecordFactory& factory()
{
    static const std::shared_ptr<osdu::StorageRecordFactory> instance = [] {
        auto made = osdu::createStorageRecordFactory();
        made->registerKind("osdu:wks:dataset--FileCollection*:1.0.0", &osdu::deserialiseFileCollection);
        return made;
    }();
    return *instance;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [kind, json] = fuzz::firstLine(fuzz::text(data, size));
    try {
        // The factory's promise: a file collection, or a plain record of an unknown kind.
        if (!factory().create(kind, json))
            std::abort();
    } catch (const std::runtime_error&) {
    }
    return 0;
}
