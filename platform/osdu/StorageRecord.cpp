#include <osdu/StorageRecord.h>

namespace osdu {

StorageRecord::StorageRecord(std::string id, std::string kind, std::string json)
    : m_id(std::move(id)), m_kind(std::move(kind)), m_json(std::move(json))
{
}

StorageRecord::~StorageRecord() = default;

} // namespace osdu
