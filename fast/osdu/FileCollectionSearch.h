#pragma once

#include <fast/fastpanel_export.h>

#include <osdu/StorageRecord.h>

#include <functional>
#include <memory>
#include <string>

namespace osdu {
class OsduHttpClient;
}

namespace fast {

// Finds the VDS file collections on an OSDU platform whose name, description or id holds a
// filter, ignoring case. Blocking: meant for a worker thread.
class FASTPANEL_EXPORT FileCollectionSearch
{
public:
    using ResultsCallback = std::function<void(std::shared_ptr<osdu::StorageRecordCollection>)>;

    // Calls onResults once with the matches (possibly none); lets no exception escape. Only
    // the first 1000 hits of the platform are examined.
    virtual void performSearch(const std::string& settingsGroup, const std::string& filter,
                               ResultsCallback onResults) = 0;

protected:
    ~FileCollectionSearch() = default;
};

FASTPANEL_EXPORT std::shared_ptr<FileCollectionSearch>
createFileCollectionSearch(std::shared_ptr<osdu::OsduHttpClient> client);

// Whether filter occurs in field, ignoring case byte by byte; an empty field never matches.
FASTPANEL_EXPORT bool fieldMatches(const std::string& field, const std::string& filter);

} // namespace fast
