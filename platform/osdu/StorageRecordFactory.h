#pragma once

#include <osdu/osdu_export.h>
#include <osdu/StorageRecord.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace osdu {

// Turns a record's JSON into the right StorageRecord subclass by its kind.
class OSDU_EXPORT StorageRecordFactory
{
public:
    using Deserialiser = std::function<std::shared_ptr<StorageRecord>(const std::string& json)>;

    virtual ~StorageRecordFactory();
    // pattern may hold '*' wildcards, each standing for any run of characters. Throws
    // std::invalid_argument for an empty pattern or an empty deserialiser.
    virtual void registerKind(const std::string& pattern, Deserialiser deserialiser) = 0;
    // The record built by the first registered pattern that matches kind; a plain StorageRecord
    // when none matches.
    virtual std::shared_ptr<StorageRecord> create(const std::string& kind, const std::string& json) const = 0;
};

OSDU_EXPORT std::shared_ptr<StorageRecordFactory> createStorageRecordFactory();

} // namespace osdu
