#include "SearchAnswer_p.h"

#include "PlatformAnswer_p.h"

#include <Poco/JSON/Array.h>

#include <stdexcept>

namespace osdu {

std::vector<SearchHit> readSearchAnswer(const CurlResponse& response)
{
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

} // namespace osdu
