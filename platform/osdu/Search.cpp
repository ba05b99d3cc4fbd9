#include <osdu/Search.h>

#include "SearchAnswer_p.h"

#include <osdu/OsduHttpClient.h>

#include <Poco/JSON/Object.h>

#include <sstream>

namespace osdu {

namespace {

class SearchV2 : public Search
{
public:
    explicit SearchV2(std::shared_ptr<OsduHttpClient> client) : m_client(std::move(client)) {}

    std::vector<SearchHit> query(const SearchQuery& query, const std::string& partition) override
    {
        return queryPage(query, partition).hits;
    }

    SearchPage queryPage(const SearchQuery& query, const std::string& partition) override
    {
        Poco::JSON::Object body(Poco::JSON_PRESERVE_KEY_ORDER);
        body.set("kind", query.kind);
        body.set("limit", query.limit);
        if (query.offset != 0)
            body.set("offset", query.offset);
        if (!query.query.empty())
            body.set("query", query.query);
        std::ostringstream text;
        body.stringify(text);

        return readSearchAnswer(m_client->post("/api/search/v2/query", text.str(), partition));
    }

private:
    std::shared_ptr<OsduHttpClient> m_client;
};

} // namespace

Search::~Search() = default;

SearchPage Search::queryPage(const SearchQuery& query, const std::string& partition)
{
    return {this->query(query, partition), -1};
}

std::shared_ptr<Search> createSearch(std::shared_ptr<OsduHttpClient> client)
{
    return std::make_shared<SearchV2>(std::move(client));
}

} // namespace osdu
