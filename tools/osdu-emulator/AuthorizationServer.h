#pragma once

#include "OsduReply.h"

#include <chrono>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace emulator {

// Grants that succeeded; refused attempts are not counted.
struct IssuedTokens
{
    int codeExchanges = 0;
    int refreshGrants = 0;
};

// How the token endpoint misbehaves on purpose: Refuse answers every grant with invalid_grant
// (a revoked sign-in), Fail with 503 (the server is down).
enum class TokenFault { None, Refuse, Fail };

// An OAuth 2.0 authorization server for one registered client: the authorization code grant
// with PKCE S256 and a loopback redirect, and the refresh token grant with rotation. It approves
// every authorization request at once, since there is no user to ask. Thread-safe.
class AuthorizationServer
{
public:
    struct Config
    {
        std::string clientId;
        // Empty makes the client public: it then authenticates by its id alone.
        std::string clientSecret;
        std::chrono::milliseconds accessTokenLifetime = std::chrono::hours(1);
        std::chrono::milliseconds refreshTokenLifetime = std::chrono::hours(24);
        bool announceRefreshTokenLifetime = true;
        // Empty: random codes and tokens; else this text, the kind and a running number.
        std::string issuedPrefix;
        // What the token answers say the access token is; a client must use nothing but "Bearer".
        std::string tokenType = "Bearer";
        // As OpenID Connect Core 11 lets a server do: a refresh token only for a sign-in whose
        // authorization request asked for prompt=consent.
        bool refreshTokenOnlyWithConsent = false;
        // false: the refresh grant keeps the refresh token presented and answers without one.
        bool rotateRefreshTokens = true;
    };

    explicit AuthorizationServer(Config config);

    OsduReply authorize(const std::string& rawQuery);
    // authorization is the request's Authorization header, empty when absent.
    OsduReply token(const std::string& authorization, const std::string& body);
    // Issued here and not expired yet.
    bool isValidAccessToken(const std::string& token) const;

    void setAccessTokenLifetime(std::chrono::milliseconds lifetime);
    void setRefreshTokenLifetime(std::chrono::milliseconds lifetime);
    void setRefreshTokenOnlyWithConsent(bool only);
    void setTokenFault(TokenFault fault);
    IssuedTokens issuedTokens() const;
    std::string lastAuthorizeQuery() const;

private:
    using Clock = std::chrono::steady_clock;
    using Form = std::map<std::string, std::string>;
    struct PendingCode
    {
        std::string clientId;
        std::string redirectUri;
        std::string challenge;
        std::string scope;
        Clock::time_point expires;
        bool consented = false;
    };
    struct Grant
    {
        std::string clientId;
        std::string scope;
        Clock::time_point expires;
    };

    OsduReply exchangeCode(const Form& form, const std::string& clientId);
    OsduReply refresh(const Form& form, const std::string& clientId);
    // withRefreshToken false: an access token alone.
    OsduReply issue(const std::string& clientId, const std::string& scope, bool withRefreshToken = true);
    void forgetExpired(Clock::time_point now);
    std::string newSecret(const char* kind);

    mutable std::mutex m_mutex;
    Config m_config;
    TokenFault m_fault = TokenFault::None;
    IssuedTokens m_issued;
    int m_secretsIssued = 0;
    std::string m_lastAuthorizeQuery;
    std::map<std::string, PendingCode> m_codes;
    // Kept so that a replayed code is told apart from a made-up one.
    std::set<std::string> m_usedCodes;
    std::map<std::string, Grant> m_accessTokens;
    std::map<std::string, Grant> m_refreshTokens;
};

} // namespace emulator
