#pragma once

#include <osdu/osdu_export.h>
#include <osdu/StorageRecord.h>

#include <memory>
#include <string>
#include <vector>

namespace osdu {

class OsduHttpClient;
class StorageRecordFactory;

// The platform's Storage service, over the client given to createStorage(), building each
// record with the factory by its kind. Blocking; safe from several threads at once, as the
// client is.
class OSDU_EXPORT Storage
{
public:
    virtual ~Storage();
    // The records with these ids (Storage v2), built by the factory; an id the platform does
    // not know gives no entry. Throws std::runtime_error with the platform's reason on failure.
    virtual StorageRecordCollection getRecords(const std::string& partition, const std::vector<std::string>& ids) = 0;
};

OSDU_EXPORT std::shared_ptr<Storage> createStorage(std::shared_ptr<OsduHttpClient> client,
                                                   std::shared_ptr<StorageRecordFactory> factory);

} // namespace osdu
