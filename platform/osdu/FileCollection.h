#pragma once

#include <osdu/StorageRecord.h>

namespace osdu {

// Where a file collection's files are: the collection's folder URL (for a VDS, its location)
// and the files relative to it.
struct DatasetProperties
{
    std::string fileCollectionPath;
    std::vector<std::string> fileSources;

    // The collection's location: what a consumer opens.
    const std::string& getFileSource() const { return fileCollectionPath; }
};

// A dataset record of a file-collection kind.
class OSDU_EXPORT FileCollection : public StorageRecord
{
public:
    FileCollection(std::string id, std::string kind, std::string json, std::string name, std::string description,
                   DatasetProperties properties);

    const std::string& getName() const { return m_name; }
    const std::string& getDescription() const { return m_description; }
    const DatasetProperties& getDatasetProperties() const { return m_properties; }

private:
    std::string m_name;
    std::string m_description;
    DatasetProperties m_properties;
};

// Reads a file-collection record from its JSON: data.Name, data.Description and
// data.DatasetProperties. Throws std::runtime_error when the text is not such a record.
OSDU_EXPORT std::shared_ptr<StorageRecord> deserialiseFileCollection(const std::string& json);

} // namespace osdu
