#pragma once

// An HTTP answer as the transport hands it over: the status on the input's first line, the
// body after it; no status means the transfer failed.

#include "FuzzInput.h"

#include <osdu/CurlSession.h>

namespace fuzz {

inline osdu::CurlResponse answer(const std::uint8_t* data, std::size_t size)
{
    const auto [status, body] = firstLine(text(data, size));
    osdu::CurlResponse response;
    response.statusCode = statusCode(status);
    response.text = body;
    if (response.statusCode == 0)
        response.error = "Couldn't connect to server";
    return response;
}

} // namespace fuzz
