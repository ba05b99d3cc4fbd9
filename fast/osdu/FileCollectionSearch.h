#pragma once

#include <fast/fastpanel_export.h>

#include <osdu/StorageRecord.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace osdu {
class OsduHttpClient;
class RequestGovernor;
} // namespace osdu

namespace fast {

// One search as the page follows it from the GUI thread: how far it has got, a way to stop it,
// and, once it has ended, what it could not do.
class FASTPANEL_EXPORT SearchRun
{
public:
    SearchRun();
    ~SearchRun();
    SearchRun(const SearchRun&) = delete;
    SearchRun& operator=(const SearchRun&) = delete;

    // The fetches in flight are abandoned within about a second; what was found stays found.
    void cancel();
    bool cancelled() const;
    // Hits whose fetch has ended, of the hits to examine (0 until the query has answered).
    std::size_t read() const { return m_read.load(); }
    std::size_t hits() const { return m_hits.load(); }

    // Once the search has ended: every record the platform holds of the kind (-1 when it did
    // not say), the datasets that could not be read and the distinct reasons why (a failed
    // query is one such reason).
    long long totalCount() const { return m_totalCount; }
    std::size_t unread() const { return m_unread; }
    const std::vector<std::string>& reasons() const { return m_reasons; }

private:
    friend class FileCollectionSearch;
    std::shared_ptr<osdu::RequestGovernor> m_governor;
    std::atomic<std::size_t> m_read{0};
    std::atomic<std::size_t> m_hits{0};
    long long m_totalCount = -1;
    std::size_t m_unread = 0;
    std::vector<std::string> m_reasons;
};

// Finds the VDS file collections on an OSDU platform whose name, description or id holds a
// filter, ignoring case. Blocking: meant for a worker thread.
class FASTPANEL_EXPORT FileCollectionSearch
{
public:
    using ResultsCallback = std::function<void(std::shared_ptr<osdu::StorageRecordCollection>)>;

    // Calls onResults once with the matches (possibly none); lets no exception escape. Only
    // the first 1000 hits of the platform are examined.
    virtual void performSearch(const std::string& settingsGroup, const std::string& filter,
                               ResultsCallback onResults) = 0;
    // The same, followed and possibly cancelled through run, which also takes what the search
    // could not do. The platform's busy answers are retried within a deadline for the search.
    virtual void performSearch(const std::string& settingsGroup, const std::string& filter, ResultsCallback onResults,
                               SearchRun& run) = 0;

protected:
    ~FileCollectionSearch() = default;
    // For the implementation: the run's governor and its ending.
    static std::shared_ptr<osdu::RequestGovernor> governorOf(SearchRun& run) { return run.m_governor; }
    static void setHits(SearchRun& run, std::size_t hits, long long totalCount);
    static void countRead(SearchRun& run) { ++run.m_read; }
    static void setUnread(SearchRun& run, std::size_t unread, std::vector<std::string> reasons);
};

FASTPANEL_EXPORT std::shared_ptr<FileCollectionSearch>
createFileCollectionSearch(std::shared_ptr<osdu::OsduHttpClient> client);

// Whether filter occurs in field, ignoring case byte by byte; an empty field never matches.
FASTPANEL_EXPORT bool fieldMatches(const std::string& field, const std::string& filter);

} // namespace fast
