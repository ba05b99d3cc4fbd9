#pragma once

#include <osdu/OsduAuthProvider.h>

// Stands in for the person's web browser when the tour signs in without a display: on a thread
// of its own it opens the sign-in page and follows the redirects back to the panel's loopback
// listener, which only works with an authorization server that approves at once, as the OSDU
// emulator does. A transport failure is printed; the tour then sees the sign-in time out.
osdu::OsduAuthProvider::BrowserOpener headlessBrowser();
