#pragma once

#include <osdu/osdu_export.h>

#include <memory>
#include <string>
#include <vector>

namespace osdu {

// One OSDU storage record: its id, its kind and its JSON as the platform gave it.
class OSDU_EXPORT StorageRecord
{
public:
    StorageRecord(std::string id, std::string kind, std::string json);
    virtual ~StorageRecord();

    const std::string& getId() const { return m_id; }
    const std::string& getKind() const { return m_kind; }
    const std::string& getJson() const { return m_json; }

private:
    std::string m_id;
    std::string m_kind;
    std::string m_json;
};

using StorageRecordCollection = std::vector<std::shared_ptr<StorageRecord>>;

} // namespace osdu
