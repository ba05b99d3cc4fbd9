#include <osdu/Storage.h>

#include "PlatformAnswer_p.h"

#include <osdu/OsduHttpClient.h>
#include <osdu/StorageRecordFactory.h>

#include <Poco/JSON/Array.h>

#include <QUrl>

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace osdu {

namespace {

// The most ids the platform takes in one query.
constexpr std::size_t BatchSize = 100;

class StorageV2 : public Storage
{
public:
    StorageV2(std::shared_ptr<OsduHttpClient> client, std::shared_ptr<StorageRecordFactory> factory)
        : m_client(std::move(client)), m_factory(std::move(factory))
    {
    }

    StorageRecordCollection getRecords(const std::string& partition, const std::vector<std::string>& ids) override
    {
        StorageRecordCollection records;
        if (ids.size() == 1)
            fetchOne(partition, ids.front(), records);
        for (std::size_t first = 0; ids.size() > 1 && first < ids.size(); first += BatchSize)
            fetchBatch(partition, ids, first, std::min(ids.size(), first + BatchSize), records);
        return records;
    }

private:
    void fetchOne(const std::string& partition, const std::string& id, StorageRecordCollection& records)
    {
        const std::string path = "/api/storage/v2/records/"
                                 + QUrl::toPercentEncoding(QString::fromStdString(id)).toStdString();
        const CurlResponse response = m_client->get(path, partition);
        if (response.statusCode == 404)
            return;
        const std::string what = "Unable to fetch record " + id;
        if (response.statusCode != 200)
            throw std::runtime_error(failure(what, ": status ", response));
        const Poco::JSON::Object::Ptr record = answerObject(what, response);
        records.push_back(m_factory->create(record->optValue<std::string>("kind", {}), response.text));
    }

    void fetchBatch(const std::string& partition, const std::vector<std::string>& ids, std::size_t first,
                    std::size_t end, StorageRecordCollection& records)
    {
        Poco::JSON::Array::Ptr wanted = new Poco::JSON::Array;
        for (std::size_t i = first; i < end; ++i)
            wanted->add(ids[i]);
        Poco::JSON::Object body;
        body.set("records", wanted);
        std::ostringstream text;
        body.stringify(text);

        const CurlResponse response = m_client->post("/api/storage/v2/query/records", text.str(), partition);
        const std::string what = "Unable to fetch record " + ids[first]
                                 + (end - first > 1 ? " and " + std::to_string(end - first - 1) + " more" : "");
        if (response.statusCode != 200)
            throw std::runtime_error(failure(what, ": status ", response));
        const Poco::JSON::Object::Ptr answer = answerObject(what, response);
        const Poco::JSON::Array::Ptr found = answer->getArray("records");
        for (unsigned i = 0; found && i < found->size(); ++i) {
            const Poco::JSON::Object::Ptr record = found->getObject(i);
            if (!record)
                continue;
            std::ostringstream json;
            record->stringify(json);
            records.push_back(m_factory->create(record->optValue<std::string>("kind", {}), json.str()));
        }
        // The platform could not read these just now: one more try each, alone, so that a
        // lasting failure is reported with its reason instead of the record going missing.
        const Poco::JSON::Array::Ptr retry = answer->getArray("retryRecords");
        for (unsigned i = 0; retry && i < retry->size(); ++i) {
            if (retry->get(i).isString())
                fetchOne(partition, retry->getElement<std::string>(i), records);
        }
    }

    std::shared_ptr<OsduHttpClient> m_client;
    std::shared_ptr<StorageRecordFactory> m_factory;
};

} // namespace

Storage::~Storage() = default;

std::shared_ptr<Storage> createStorage(std::shared_ptr<OsduHttpClient> client,
                                       std::shared_ptr<StorageRecordFactory> factory)
{
    if (!client || !factory)
        throw std::invalid_argument("Storage needs a client and a record factory");
    return std::make_shared<StorageV2>(std::move(client), std::move(factory));
}

} // namespace osdu
