#pragma once

#include "OsduReply.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace emulator {

// The records of one data partition and the Search v2 and Storage v2 answers about them, without
// the HTTP and the access checks around them. Thread-safe.
class RecordStore
{
public:
    explicit RecordStore(std::string partition);

    // dataJson is the record's "data" object as JSON text; adding an id again makes a new
    // version of it. Throws Poco::Exception when dataJson is not an object.
    void add(const std::string& id, const std::string& kind, const std::string& dataJson);
    std::size_t size() const;

    // Fetching these ids fails as a broken back end would: 500 alone, a retry in a batch.
    void setFailing(const std::string& id);
    void clearFailing();

    OsduReply search(const std::string& body) const;
    // version is empty for the latest one; id is decoded already.
    OsduReply record(const std::string& id, const std::string& version) const;
    OsduReply queryRecords(const std::string& body) const;

private:
    struct Stored
    {
        std::string kind;
        std::int64_t version = 0;
        std::string json;
    };

    mutable std::mutex m_mutex;
    std::string m_partition;
    std::int64_t m_nextVersion;
    std::map<std::string, Stored> m_records;
    std::set<std::string> m_failing;
};

} // namespace emulator
