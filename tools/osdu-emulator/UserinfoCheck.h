#pragma once

#include <string>

namespace emulator {

// Whether another authorization server takes accessToken as its own: its OpenID Connect userinfo
// endpoint (plain http on loopback) answers 200 to a request that carries it. Any other answer,
// or no answer, is a no.
bool acceptedByUserinfo(const std::string& userinfoUrl, const std::string& accessToken);

} // namespace emulator
