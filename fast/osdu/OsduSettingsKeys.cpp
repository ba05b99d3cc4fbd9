#include <fast/osdu/OsduSettingsKeys.h>

namespace fast {

const std::string OSDU_GRANT_TYPE = "OSDU_GRANT_TYPE";
const std::string OSDU_SCOPE = "OSDU_SCOPE";
const std::string OSDU_CALLBACK_URL = "OSDU_CALLBACK_URL";
const std::string OSDU_CALLBACK_PORT = "OSDU_CALLBACK_PORT";
const std::string OSDU_CLIENT_ID = "OSDU_CLIENT_ID";
const std::string OSDU_CLIENT_SECRET = "OSDU_CLIENT_SECRET";
const std::string OSDU_OAUTH_URL = "OSDU_OAUTH_URL";
const std::string OSDU_OAUTH_TOKEN_URL = "OSDU_OAUTH_TOKEN_URL";
const std::string OSDU_REFRESH_TOKEN = "OSDU_REFRESH_TOKEN";
const std::string OSDU_RESOURCE = "OSDU_RESOURCE";
const std::string OSDU_BASE_URL = "OSDU_BASE_URL";
const std::string OSDU_PROMPT = "OSDU_PROMPT";
const std::string OSDU_FETCH_CONCURRENCY = "OSDU_FETCH_CONCURRENCY";
const std::string OSDU_DATA_PARTITION_ID = "OSDU_DATA_PARTITION_ID";
const std::string OSDU_AUTHENTICATION_TIMEOUT = "OSDU_AUTHENTICATION_TIMEOUT";
const std::string OSDU_REFRESH_TOKEN_HASH = "OSDU_REFRESH_TOKEN_HASH";
const std::string OSDU_REFRESH_TOKEN_EXPIRY = "OSDU_REFRESH_TOKEN_EXPIRY";

const std::string BEARER = "Bearer";
const std::string REDIRECT_URI = "redirect_uri";
const std::string RESOURCE = "resource";
const std::string RESPONSE_TYPE = "response_type";

} // namespace fast
