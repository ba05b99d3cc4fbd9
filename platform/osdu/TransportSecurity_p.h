#pragma once

// Internal to the library: which URLs a sign-in or a platform request may use.

#include <QString>

#include <string>

namespace osdu {

// Whether url may carry tokens: https to any host, or http to this machine alone (127.0.0.0/8,
// ::1, "localhost"), where nothing crosses a network. Decided from the text alone: no name is
// looked up.
bool usesSafeTransport(const std::string& url);

// Whether host (a URL's host) is this machine's: "localhost" or a loopback address.
bool isLoopbackHost(const QString& host);

// The sentence that refuses url for the setting that holds it.
std::string unsafeTransportMessage(const char* setting);

} // namespace osdu
