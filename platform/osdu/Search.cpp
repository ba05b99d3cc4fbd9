#include <osdu/Search.h>

#include "PlatformAnswer.h"

#include <osdu/OsduHttpClient.h>

#include <Poco/JSON/Array.h>

#include <sstream>
#include <stdexcept>

namespace osdu {

namespace {

class SearchV2 : public Search
{
public:
    explicit SearchV2(std::shared_ptr<OsduHttpClient> client) : m_client(std::move(client)) {}

    std::vector<SearchHit> query(const SearchQuery& query, const std::string& partition) override
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

        const CurlResponse response = m_client->post("/api/search/v2/query", text.str(), partition);
        if (response.statusCode != 200)
            throw std::runtime_error(failure("Search failed", " with status ", response));
        const Poco::JSON::Array::Ptr results = answerObject("Search failed", response)->getArray("results");
        std::vector<SearchHit> hits;
        for (unsigned i = 0; results && i < results->size(); ++i) {
            const Poco::JSON::Object::Ptr result = results->getObject(i);
            if (result)
                hits.push_back({result->optValue<std::string>("id", {}), result->optValue<std::string>("kind", {})});
        }
        return hits;
    }

private:
    std::shared_ptr<OsduHttpClient> m_client;
};

} // namespace

Search::~Search() = default;

std::shared_ptr<Search> createSearch(std::shared_ptr<OsduHttpClient> client)
{
    return std::make_shared<SearchV2>(std::move(client));
}

} // namespace osdu
