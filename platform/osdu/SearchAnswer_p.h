#pragma once

// Internal to the library: reading the answer of a Search v2 query.

#include <osdu/CurlSession.h>
#include <osdu/Search.h>

#include <vector>

namespace osdu {

// The hits of one page, in the platform's order, and the total count; entries that are not objects are passed over.
// Throws std::runtime_error "Search failed..." with the platform's reason when the status is
// not 200 or the answer is not a JSON object.
SearchPage readSearchAnswer(const CurlResponse& response);

} // namespace osdu
