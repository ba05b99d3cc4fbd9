// The HTTP status on the first line, then the body of a token endpoint's answer.

#include "AnswerInput.h"

#include <osdu/TokenAnswer_p.h>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const osdu::CurlResponse response = fuzz::answer(data, size);
    const osdu::TokenGrant grant = osdu::readTokenAnswer(response);
    // What the sign-in relies on: a granted token with its expiry, or a reason to show.
    if (grant.ok ? grant.accessToken.empty() || !grant.accessExpiry.isValid() : grant.message.isEmpty())
        std::abort();
    return 0;
}
