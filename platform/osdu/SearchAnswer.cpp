#include "SearchAnswer_p.h"

#include "PlatformAnswer_p.h"

#include <Poco/JSON/Array.h>

#include <stdexcept>

namespace osdu {

SearchPage readSearchAnswer(const CurlResponse& response)
{
    if (response.statusCode != 200)
        throw std::runtime_error(failure("Search failed", " with status ", response));
    const Poco::JSON::Object::Ptr answer = answerObject("Search failed", response);
    const Poco::JSON::Array::Ptr results = answer->getArray("results");
    SearchPage page;
    const Poco::Dynamic::Var total = answer->has("totalCount") ? answer->get("totalCount") : Poco::Dynamic::Var();
    if (total.isInteger())
        page.totalCount = total.convert<long long>();
    std::vector<SearchHit>& hits = page.hits;
    for (unsigned i = 0; results && i < results->size(); ++i) {
        const Poco::JSON::Object::Ptr result = results->getObject(i);
        if (result)
            hits.push_back({result->optValue<std::string>("id", {}), result->optValue<std::string>("kind", {})});
    }
    return page;
}

} // namespace osdu
