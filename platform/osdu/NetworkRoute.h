#pragma once

// Internal to the library: which way a request goes. Every libcurl easy handle that is given a
// URL is given its route here as well, so that all requests take the same one.

#include <curl/curl.h>

#include <string>

namespace osdu {

// Sends the request that handle makes to url through the proxy that the system names for url, as
// Qt reads the system's settings (Windows' settings and PAC files, macOS's, the environment on
// Linux), with the proxy's user and password when it carries them; straight to this machine's
// loopback addresses whatever the settings say. On Windows, https is checked against the
// system's certificate store; elsewhere against libcurl's own bundle. The system's answer is kept
// for a minute per scheme and host, since a PAC file can take long to answer. Any thread.
void applyNetworkRoute(CURL* handle, const std::string& url);

} // namespace osdu
