#pragma once

#include <string>

namespace osdu {

// What a provider needs to sign in: the OAuth client, the authorization server's two
// endpoints, and where the browser comes back to.
struct OsduAuthProviderInitParams
{
    std::string clientId;
    std::string clientSecret;
    std::string oauthUrl;      // the authorization endpoint
    std::string oauthTokenUrl; // the token endpoint
    std::string scope;
    std::string refreshToken; // when set, sign-in uses it and no browser
    std::string callbackUrl;  // an http URL on the loopback host, without a port
    int callbackPort = 80;
    std::string resource;
    // The authorization request's prompt ("consent", say); empty sends none.
    std::string prompt;
};

} // namespace osdu
