#include <fast/osdu/FileCollectionSearch.h>

#include <fast/osdu/OsduSettingsKeys.h>
#include <fast/panel/PanelMessages.h>

#include <osdu/FileCollection.h>
#include <osdu/Search.h>
#include <osdu/Settings.h>
#include <osdu/Storage.h>
#include <osdu/StorageRecordFactory.h>

#include <algorithm>

namespace fast {

namespace {

const std::string kRegisteredKind = "osdu:wks:dataset--FileCollection*:1.0.0";
const std::string kSearchedKind = "osdu:wks:dataset--FileCollection.Bluware.*:1.0.0";
constexpr int kHitLimit = 1000;

QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

bool matches(const osdu::FileCollection& record, const std::string& filter)
{
    return fieldMatches(record.getName(), filter) || fieldMatches(record.getDescription(), filter)
           || fieldMatches(record.getId(), filter);
}

class FileCollectionSearchImpl final : public FileCollectionSearch
{
public:
    explicit FileCollectionSearchImpl(std::shared_ptr<osdu::OsduHttpClient> client)
        : m_client(std::move(client)), m_search(osdu::createSearch(m_client))
    {
        auto factory = osdu::createStorageRecordFactory();
        try {
            factory->registerKind(kRegisteredKind, &osdu::deserialiseFileCollection);
        } catch (const std::exception& failure) {
            trace(QString("FAST FileCollectionSearch exception %1").arg(45));
            trace(QString("Unable to register OSDU kind %1: %2")
                      .arg(text(kRegisteredKind), QString::fromUtf8(failure.what())));
        }
        m_storage = osdu::createStorage(m_client, factory);
    }

    void performSearch(const std::string& settingsGroup, const std::string& filter, ResultsCallback onResults) override
    {
        auto results = std::make_shared<osdu::StorageRecordCollection>();
        const std::string partition = osdu::getSettingValue(settingsGroup, OSDU_DATA_PARTITION_ID, "");
        std::vector<osdu::SearchHit> hits;
        try {
            osdu::SearchQuery query;
            query.kind = kSearchedKind;
            query.limit = kHitLimit;
            hits = m_search->query(query, partition);
        } catch (const std::exception& failure) {
            reportFailure("", partition, failure);
        }
        for (const osdu::SearchHit& hit : hits) {
            trace(QString("About to query the record with id=%1 in partition=%2").arg(text(hit.id), text(partition)));
            try {
                for (const auto& record : m_storage->getRecords(partition, {hit.id})) {
                    const auto* collection = dynamic_cast<const osdu::FileCollection*>(record.get());
                    if (collection && matches(*collection, filter))
                        results->push_back(record);
                }
            } catch (const std::exception& failure) {
                reportFailure(hit.id, partition, failure);
            }
        }
        onResults(results);
    }

private:
    static void reportFailure(const std::string& id, const std::string& partition, const std::exception& failure)
    {
        trace(QString("FAST FileCollectionSearch performSearch exception %1").arg(97));
        trace(QString("Unable to query the record with id=%1 in partition=%2: %3")
                  .arg(text(id), text(partition), QString::fromUtf8(failure.what())));
    }

    std::shared_ptr<osdu::OsduHttpClient> m_client;
    std::shared_ptr<osdu::Search> m_search;
    std::shared_ptr<osdu::Storage> m_storage;
};

} // namespace

std::shared_ptr<FileCollectionSearch> createFileCollectionSearch(std::shared_ptr<osdu::OsduHttpClient> client)
{
    return std::make_shared<FileCollectionSearchImpl>(std::move(client));
}

bool fieldMatches(const std::string& field, const std::string& filter)
{
    if (field.empty())
        return false;
    // Byte by byte, as in the "C" locale, whatever locale the host has set.
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    const auto found = std::search(field.begin(), field.end(), filter.begin(), filter.end(),
                                   [&upper](char a, char b) { return upper(a) == upper(b); });
    return found != field.end();
}

} // namespace fast
