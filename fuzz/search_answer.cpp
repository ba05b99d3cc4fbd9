// The HTTP status on the first line, then the body of a Search v2 answer.

#include "AnswerInput.h"

#include <osdu/SearchAnswer_p.h>

#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const osdu::CurlResponse response = fuzz::answer(data, size);
    try {
        osdu::readSearchAnswer(response);
    } catch (const std::runtime_error&) {
    }
    return 0;
}
