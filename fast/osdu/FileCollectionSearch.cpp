#include <fast/osdu/FileCollectionSearch.h>

#include <fast/client/Utf8Text_p.h>
#include <fast/osdu/OsduSettingsKeys.h>
#include <fast/panel/PanelMessages_p.h>

#include <osdu/FileCollection.h>
#include <osdu/OsduHttpClient.h>
#include <osdu/RequestGovernor.h>
#include <osdu/Search.h>
#include <osdu/Settings.h>
#include <osdu/Storage.h>
#include <osdu/StorageRecordFactory.h>

#include <QStringList>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace fast {

namespace {

// Call-site numbers carried by the trace lines; the host's log readers rely on them.
enum TraceSite : int {
    RegisterKindSite = 45,
    SearchSite = 97,
};

const std::string kRegisteredKind = "osdu:wks:dataset--FileCollection*:1.0.0";
const std::string kSearchedKind = "osdu:wks:dataset--FileCollection.Bluware.*:1.0.0";
constexpr int kHitLimit = 1000;
constexpr std::size_t kDefaultFetches = 16;
// More would only queue at the platform; it also bounds the threads a setting can ask for.
constexpr int kMostFetchesAtOnce = 64;
// Over HTTP/2: the streams a server commonly allows on one connection; libcurl keeps to fewer
// when the server says so.
constexpr std::size_t kMostStreams = 64;
// The whole search, retries included: past it, what is still unread is reported as such.
constexpr std::chrono::minutes kSearchBudget{3};

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
            trace(QString("FAST FileCollectionSearch exception %1").arg(RegisterKindSite));
            trace(QString("Unable to register OSDU kind %1: %2")
                      .arg(text(kRegisteredKind), QString::fromUtf8(failure.what())));
        }
        m_storage = osdu::createStorage(m_client, factory);
    }

    void performSearch(const std::string& settingsGroup, const std::string& filter, ResultsCallback onResults) override
    {
        SearchRun run;
        performSearch(settingsGroup, filter, std::move(onResults), run);
    }

    void performSearch(const std::string& settingsGroup, const std::string& filter, ResultsCallback onResults,
                       SearchRun& run) override
    {
        auto results = std::make_shared<osdu::StorageRecordCollection>();
        const std::string partition = osdu::getSettingValue(settingsGroup, OSDU_DATA_PARTITION_ID, "");
        const std::shared_ptr<osdu::RequestGovernor> governor = governorOf(run);
        governor->setMostInFlight(static_cast<int>(fetchConcurrency(settingsGroup)));
        governor->onRetry = [](const osdu::RetryNote& note) { trace(retryLine(note)); };
        m_client->setGovernor(governor);
        // The client outlives this search: the next one brings its own governor.
        const std::shared_ptr<void> ungoverned(nullptr, [this](void*) { m_client->setGovernor(nullptr); });
        std::vector<std::string> reasons;
        osdu::SearchPage page;
        try {
            osdu::SearchQuery query;
            query.kind = kSearchedKind;
            query.limit = kHitLimit;
            page = m_search->queryPage(query, partition);
        } catch (const std::exception& failure) {
            trace(QString("FAST FileCollectionSearch performSearch exception %1").arg(SearchSite));
            trace(failureLine("", partition, failure));
            if (!governor->cancelled())
                reasons.emplace_back(failure.what());
        }
        const std::vector<osdu::SearchHit>& hits = page.hits;
        setHits(run, hits.size(), page.totalCount);
        HitOutcomes outcomes(hits.size());
        // Over HTTP/2 the fetches are streams of one connection, not connections of their own:
        // many more can be in flight than the setting allows connections.
        const std::size_t most = m_client->multiplexing() ? kMostStreams : fetchConcurrency(settingsGroup);
        governor->setMostInFlight(static_cast<int>(most));
        const std::size_t workers = std::min(hits.size(), most);
        // One fetch per hit, several in flight at once; what each hit tells the log goes out in
        // hit order all the same, as the outcomes before it are known.
        std::atomic<std::size_t> nextHit{0};
        const auto work = [&] {
            for (std::size_t i = nextHit++; i < hits.size(); i = nextHit++) {
                // Cancelled: the hits not yet fetched are left alone, and their turn passes.
                HitOutcome outcome = governor->cancelled() ? HitOutcome()
                                                           : fetch(hits[i], partition, filter, *governor);
                if (!outcome.abandoned)
                    countRead(run);
                outcomes.publish(i, std::move(outcome));
            }
        };
        // Threads of this search's own rather than the library's pool, which runs the search
        // itself: a search waiting for fetches queued in the pool behind other searches could
        // wait for ever. Joined below, so they end before the search does and a host waiting for
        // the library's work waits for them too; a cancel ends them within about a second.
        std::vector<std::thread> threads;
        threads.reserve(workers > 1 ? workers : 0);
        for (std::size_t t = 0; workers > 1 && t < workers; ++t)
            threads.emplace_back(work);
        if (workers <= 1)
            work();
        for (std::thread& thread : threads)
            thread.join();
        std::size_t unread = 0;
        for (HitOutcome& outcome : outcomes.all()) {
            results->insert(results->end(), outcome.matches.begin(), outcome.matches.end());
            if (outcome.unread) {
                ++unread;
                if (std::find(reasons.begin(), reasons.end(), outcome.reason) == reasons.end())
                    reasons.push_back(outcome.reason);
            }
        }
        setUnread(run, unread, std::move(reasons));
        onResults(results);
    }

private:
    struct HitOutcome
    {
        QStringList lines;
        osdu::StorageRecordCollection matches;
        bool unread = false;
        std::string reason;
        // Not fetched, or not to the end: the search was cancelled.
        bool abandoned = true;
    };

    // The outcomes by hit, and the log lines sent in hit order as soon as they can be.
    class HitOutcomes
    {
    public:
        explicit HitOutcomes(std::size_t count) : m_outcomes(count), m_done(count, false) {}
        void publish(std::size_t hit, HitOutcome outcome)
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_outcomes[hit] = std::move(outcome);
            m_done[hit] = true;
            for (; m_nextToLog < m_outcomes.size() && m_done[m_nextToLog]; ++m_nextToLog) {
                for (const QString& line : m_outcomes[m_nextToLog].lines)
                    trace(line);
            }
        }
        std::vector<HitOutcome>& all() { return m_outcomes; }

    private:
        std::mutex m_mutex;
        std::vector<HitOutcome> m_outcomes;
        std::vector<bool> m_done;
        std::size_t m_nextToLog = 0;
    };

    HitOutcome fetch(const osdu::SearchHit& hit, const std::string& partition, const std::string& filter,
                     const osdu::RequestGovernor& governor) const
    {
        HitOutcome outcome;
        outcome.abandoned = false;
        outcome.lines
            << QString("About to query the record with id=%1 in partition=%2").arg(text(hit.id), text(partition));
        try {
            for (const auto& record : m_storage->getRecords(partition, {hit.id})) {
                const auto* collection = dynamic_cast<const osdu::FileCollection*>(record.get());
                if (collection && matches(*collection, filter))
                    outcome.matches.push_back(record);
            }
        } catch (const std::exception& failure) {
            // Abandoned by a cancel: not unread, only not read yet.
            outcome.abandoned = governor.cancelled();
            if (outcome.abandoned)
                return outcome;
            outcome.lines << QString("FAST FileCollectionSearch performSearch exception %1").arg(SearchSite)
                          << failureLine(hit.id, partition, failure);
            outcome.unread = true;
            outcome.reason = reasonOnly(hit.id, failure.what());
        }
        return outcome;
    }

    // The failure without the record it is about, so that one reason shared by many records is
    // told once.
    static std::string reasonOnly(const std::string& id, const std::string& failure)
    {
        const std::string about = "Unable to fetch record " + id;
        if (failure.compare(0, about.size(), about) != 0)
            return failure;
        const std::size_t rest = failure.find_first_not_of(": ", about.size());
        return rest == std::string::npos ? failure : failure.substr(rest);
    }

    static QString retryLine(const osdu::RetryNote& note)
    {
        const QString answer = note.status == 0 ? QString("cut off") : QString("answered %1").arg(note.status);
        return QString("OSDU request %1 %2, attempt %3 of %4 follows in %5 ms")
            .arg(text(note.path), answer)
            .arg(note.attempt + 1)
            .arg(note.attempts)
            .arg(note.delayMs);
    }

    static std::size_t fetchConcurrency(const std::string& settingsGroup)
    {
        const std::string setting = osdu::getSettingValue(settingsGroup, OSDU_FETCH_CONCURRENCY, "");
        bool ok = false;
        const int wanted = QString::fromStdString(setting).toInt(&ok);
        return ok && wanted >= 1 ? static_cast<std::size_t>(std::min(wanted, kMostFetchesAtOnce)) : kDefaultFetches;
    }

    static QString failureLine(const std::string& id, const std::string& partition, const std::exception& failure)
    {
        return QString("Unable to query the record with id=%1 in partition=%2: %3")
            .arg(text(id), text(partition), QString::fromUtf8(failure.what()));
    }

private:
    std::shared_ptr<osdu::OsduHttpClient> m_client;
    std::shared_ptr<osdu::Search> m_search;
    std::shared_ptr<osdu::Storage> m_storage;
};

} // namespace

SearchRun::SearchRun() : m_governor(std::make_shared<osdu::RequestGovernor>(int(kDefaultFetches), kSearchBudget))
{
}

SearchRun::~SearchRun() = default;

void SearchRun::cancel()
{
    m_governor->cancel();
}

bool SearchRun::cancelled() const
{
    return m_governor->cancelled();
}

void FileCollectionSearch::setHits(SearchRun& run, std::size_t hits, long long totalCount)
{
    run.m_totalCount = totalCount;
    run.m_hits = hits;
}

void FileCollectionSearch::setUnread(SearchRun& run, std::size_t unread, std::vector<std::string> reasons)
{
    run.m_unread = unread;
    run.m_reasons = std::move(reasons);
}

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
