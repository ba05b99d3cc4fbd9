#pragma once

#include <osdu/osdu_export.h>

#include <memory>
#include <string>
#include <vector>

namespace osdu {

class OsduHttpClient;

// A query of the Search v2 API; fields left at their defaults are not sent.
struct SearchQuery
{
    std::string kind;
    int limit = 10; // 1..1000
    int offset = 0;
    std::string query;
};

struct SearchHit
{
    std::string id;
    std::string kind;
};

// One page of hits and how many records match in all, beyond the page too; -1 when the
// platform does not say.
struct SearchPage
{
    std::vector<SearchHit> hits;
    long long totalCount = -1;
};

// The platform's Search service, over the client given to createSearch(). Blocking; safe from
// several threads at once, as the client is.
class OSDU_EXPORT Search
{
public:
    virtual ~Search();
    // One page of hits. Throws std::runtime_error with the platform's reason on failure.
    virtual std::vector<SearchHit> query(const SearchQuery& query, const std::string& partition) = 0;
    // The same, with the count of all matching records.
    virtual SearchPage queryPage(const SearchQuery& query, const std::string& partition);
};

OSDU_EXPORT std::shared_ptr<Search> createSearch(std::shared_ptr<OsduHttpClient> client);

} // namespace osdu
