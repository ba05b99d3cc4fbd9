#include <osdu/FileCollection.h>

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <stdexcept>

namespace osdu {

namespace {

using Poco::JSON::Array;
using Poco::JSON::Object;

std::string text(const Object::Ptr& object, const std::string& name)
{
    return object ? object->optValue<std::string>(name, std::string()) : std::string();
}

Object::Ptr member(const Object::Ptr& object, const std::string& name)
{
    return object ? object->getObject(name) : Object::Ptr();
}

} // namespace

FileCollection::FileCollection(std::string id, std::string kind, std::string json, std::string name,
                               std::string description, DatasetProperties properties)
    : StorageRecord(std::move(id), std::move(kind), std::move(json)), m_name(std::move(name)),
      m_description(std::move(description)), m_properties(std::move(properties))
{
}

std::shared_ptr<StorageRecord> deserialiseFileCollection(const std::string& json)
{
    try {
        const Object::Ptr record = Poco::JSON::Parser().parse(json).extract<Object::Ptr>();
        const std::string id = text(record, "id");
        const std::string kind = text(record, "kind");
        if (id.empty() || kind.empty())
            throw std::runtime_error("The record has no id or no kind");
        const Object::Ptr data = member(record, "data");
        const Object::Ptr dataset = member(data, "DatasetProperties");
        DatasetProperties properties;
        properties.fileCollectionPath = text(dataset, "FileCollectionPath");
        const Array::Ptr sources = dataset ? dataset->getArray("FileSourceInfos") : Array::Ptr();
        for (unsigned i = 0; sources && i < sources->size(); ++i) {
            const std::string source = text(sources->getObject(i), "FileSource");
            if (!source.empty())
                properties.fileSources.push_back(source);
        }
        return std::make_shared<FileCollection>(id, kind, json, text(data, "Name"), text(data, "Description"),
                                                std::move(properties));
    } catch (const Poco::Exception& failure) {
        throw std::runtime_error("The record is not a readable file collection: " + failure.displayText());
    }
}

} // namespace osdu
