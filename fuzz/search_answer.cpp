// The HTTP status on the first line, then the body of a Search v2 answer.

#include "FuzzInput.h"

#include <osdu/SearchAnswer.h>

#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [status, body] = fuzz::firstLine(fuzz::text(data, size));
    osdu::CurlResponse response;
    response.statusCode = fuzz::statusCode(status);
    response.text = body;
    if (response.statusCode == 0)
        response.error = "Couldn't connect to server";
    try {
        osdu::readSearchAnswer(response);
    } catch (const std::runtime_error&) {
    }
    return 0;
}
