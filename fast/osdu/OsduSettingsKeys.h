#pragma once

#include <fast/fastpanel_export.h>

#include <string>

// The keys of the OSDU settings, in the provider's group ("AWS" or "Azure"), shared by every
// reader, and a few OAuth words.
namespace fast {

FASTPANEL_EXPORT extern const std::string OSDU_GRANT_TYPE;
FASTPANEL_EXPORT extern const std::string OSDU_SCOPE;
FASTPANEL_EXPORT extern const std::string OSDU_CALLBACK_URL;
FASTPANEL_EXPORT extern const std::string OSDU_CALLBACK_PORT;
FASTPANEL_EXPORT extern const std::string OSDU_CLIENT_ID;
FASTPANEL_EXPORT extern const std::string OSDU_CLIENT_SECRET;
FASTPANEL_EXPORT extern const std::string OSDU_OAUTH_URL;
FASTPANEL_EXPORT extern const std::string OSDU_OAUTH_TOKEN_URL;
FASTPANEL_EXPORT extern const std::string OSDU_REFRESH_TOKEN;
FASTPANEL_EXPORT extern const std::string OSDU_RESOURCE;
FASTPANEL_EXPORT extern const std::string OSDU_BASE_URL;
// The authorization request's prompt; empty (the default) sends none.
FASTPANEL_EXPORT extern const std::string OSDU_PROMPT;
// Storage fetches in flight at once during a search (default 16; 1 fetches one at a time).
FASTPANEL_EXPORT extern const std::string OSDU_FETCH_CONCURRENCY;
FASTPANEL_EXPORT extern const std::string OSDU_DATA_PARTITION_ID;
// Group "FAST": seconds allowed for each sign-in exchange.
FASTPANEL_EXPORT extern const std::string OSDU_AUTHENTICATION_TIMEOUT;
// The stored refresh-token record.
FASTPANEL_EXPORT extern const std::string OSDU_REFRESH_TOKEN_HASH;
FASTPANEL_EXPORT extern const std::string OSDU_REFRESH_TOKEN_EXPIRY;

FASTPANEL_EXPORT extern const std::string BEARER;
FASTPANEL_EXPORT extern const std::string REDIRECT_URI;
FASTPANEL_EXPORT extern const std::string RESOURCE;
FASTPANEL_EXPORT extern const std::string RESPONSE_TYPE;

} // namespace fast
