#include "AuthorizationServer.h"

#include <Poco/Base64Decoder.h>
#include <Poco/Base64Encoder.h>
#include <Poco/Exception.h>
#include <Poco/JSON/Object.h>
#include <Poco/RandomStream.h>
#include <Poco/SHA2Engine.h>
#include <Poco/StreamCopier.h>
#include <Poco/String.h>
#include <Poco/URI.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

namespace emulator {

namespace {

const auto kCodeLifetime = std::chrono::seconds(60);

std::string base64Url(const std::string& bytes)
{
    std::ostringstream out;
    Poco::Base64Encoder encoder(out, Poco::BASE64_URL_ENCODING | Poco::BASE64_NO_PADDING);
    encoder.rdbuf()->setLineLength(0);
    encoder << bytes;
    encoder.close();
    return out.str();
}

std::string randomToken()
{
    std::string bytes(32, '\0');
    Poco::RandomInputStream().read(&bytes[0], static_cast<std::streamsize>(bytes.size()));
    return base64Url(bytes);
}

std::string s256(const std::string& verifier)
{
    Poco::SHA2Engine sha(Poco::SHA2Engine::SHA_256);
    sha.update(verifier);
    const Poco::DigestEngine::Digest& digest = sha.digest();
    return base64Url(std::string(digest.begin(), digest.end()));
}

// Code verifiers and S256 challenges share the alphabet of RFC 7636; a challenge is always 43 long.
bool isPkceText(const std::string& text, std::size_t minLength, std::size_t maxLength)
{
    return text.size() >= minLength && text.size() <= maxLength
           && std::all_of(text.begin(), text.end(), [](unsigned char c) {
                  return std::isalnum(c) || c == '-' || c == '.' || c == '_' || c == '~';
              });
}

std::string formDecode(std::string text)
{
    std::replace(text.begin(), text.end(), '+', ' ');
    std::string decoded;
    Poco::URI::decode(text, decoded);
    return decoded;
}

// Both the authorization request's query and the token request's body are form-encoded, and
// neither may repeat a parameter.
std::map<std::string, std::string> parseForm(const std::string& text)
{
    std::map<std::string, std::string> form;
    std::istringstream pairs(text);
    std::string pair;
    while (std::getline(pairs, pair, '&')) {
        if (pair.empty())
            continue;
        const std::size_t equals = pair.find('=');
        const std::string name = formDecode(pair.substr(0, equals));
        const std::string value = equals == std::string::npos ? std::string() : formDecode(pair.substr(equals + 1));
        if (!form.emplace(name, value).second)
            throw std::invalid_argument("the parameter " + name + " is repeated");
    }
    return form;
}

std::string valueOf(const std::map<std::string, std::string>& form, const std::string& name)
{
    const auto found = form.find(name);
    return found == form.end() ? std::string() : found->second;
}

// RFC 8252: a native client listens on the loopback interface over plain HTTP.
bool isLoopbackRedirect(const std::string& redirectUri)
{
    try {
        const Poco::URI uri(redirectUri);
        const std::string host = Poco::toLower(uri.getHost());
        return uri.getScheme() == "http" && (host == "127.0.0.1" || host == "localhost" || host == "::1")
               && uri.getUserInfo().empty() && uri.getFragment().empty();
    } catch (const Poco::SyntaxException&) {
        return false;
    }
}

OsduReply redirect(const std::string& redirectUri, const std::vector<std::pair<std::string, std::string>>& parameters)
{
    std::string location = redirectUri;
    char separator = redirectUri.find('?') == std::string::npos ? '?' : '&';
    for (const auto& parameter : parameters) {
        std::string encoded;
        Poco::URI::encode(parameter.second, "&=+#?/:;@", encoded);
        location += separator + parameter.first + '=' + encoded;
        separator = '&';
    }
    return {302, "Found: " + location, "text/plain", {{"Location", location}}};
}

OsduReply errorRedirect(const std::string& redirectUri, const std::string& error, const std::string& description,
                        const std::string& state)
{
    std::vector<std::pair<std::string, std::string>> parameters{{"error", error}, {"error_description", description}};
    if (!state.empty())
        parameters.emplace_back("state", state);
    return redirect(redirectUri, parameters);
}

// Without a trustworthy redirect URI the user is told in the browser, never sent elsewhere.
OsduReply errorPage(const std::string& message)
{
    return {400, "<html><body><h1>Sign-in request refused</h1><p>" + message + "</p></body></html>", "text/html", {}};
}

OsduReply oauthError(int status, const std::string& error, const std::string& description)
{
    Poco::JSON::Object::Ptr body = new Poco::JSON::Object;
    body->set("error", error);
    body->set("error_description", description);
    OsduReply reply = OsduReply::json(status, body);
    reply.headers = {{"Cache-Control", "no-store"}, {"Pragma", "no-cache"}};
    return reply;
}

struct ClientCredentials
{
    std::string id;
    std::string secret;
    bool byHeader = false;
};

// Throws std::invalid_argument when the two ways of naming the client disagree or the header is unreadable.
ClientCredentials clientCredentials(const std::string& authorization, const std::map<std::string, std::string>& form)
{
    const std::string scheme = "basic ";
    if (Poco::toLower(authorization.substr(0, scheme.size())) != scheme)
        return {valueOf(form, "client_id"), valueOf(form, "client_secret"), false};
    std::istringstream encoded(Poco::trim(authorization.substr(scheme.size())));
    Poco::Base64Decoder decoder(encoded);
    std::string decoded;
    Poco::StreamCopier::copyToString(decoder, decoded);
    const std::size_t colon = decoded.find(':');
    if (colon == std::string::npos)
        throw std::invalid_argument("the Basic credentials lack the colon");
    // RFC 6749 2.3.1 form-encodes id and secret before they are joined.
    ClientCredentials credentials{formDecode(decoded.substr(0, colon)), formDecode(decoded.substr(colon + 1)), true};
    const std::string formId = valueOf(form, "client_id");
    if (!formId.empty() && formId != credentials.id)
        throw std::invalid_argument("client_id differs from the Basic credentials");
    return credentials;
}

} // namespace

AuthorizationServer::AuthorizationServer(Config config) : m_config(std::move(config))
{
}

OsduReply AuthorizationServer::authorize(const std::string& rawQuery)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_lastAuthorizeQuery = rawQuery;
    std::map<std::string, std::string> query;
    try {
        query = parseForm(rawQuery);
    } catch (const std::invalid_argument& reason) {
        return errorPage(std::string("The request is malformed: ") + reason.what() + ".");
    }
    const std::string redirectUri = valueOf(query, "redirect_uri");
    if (!isLoopbackRedirect(redirectUri))
        return errorPage("redirect_uri must be an http URL on the loopback host, not \"" + redirectUri + "\".");
    if (valueOf(query, "client_id") != m_config.clientId)
        return errorPage("The client \"" + valueOf(query, "client_id") + "\" is not registered.");

    const std::string state = valueOf(query, "state");
    if (valueOf(query, "response_type") != "code")
        return errorRedirect(redirectUri, "unsupported_response_type", "Only response_type=code is supported", state);
    const std::string challenge = valueOf(query, "code_challenge");
    if (challenge.empty())
        return errorRedirect(redirectUri, "invalid_request", "code_challenge is required", state);
    if (valueOf(query, "code_challenge_method") != "S256")
        return errorRedirect(redirectUri, "invalid_request", "code_challenge_method must be S256", state);
    if (!isPkceText(challenge, 43, 43))
        return errorRedirect(redirectUri, "invalid_request", "code_challenge is not a base64url SHA-256 digest", state);

    const std::string code = newSecret("code");
    m_codes[code] = {m_config.clientId,
                     redirectUri,
                     challenge,
                     valueOf(query, "scope"),
                     Clock::now() + kCodeLifetime,
                     valueOf(query, "prompt") == "consent"};
    std::vector<std::pair<std::string, std::string>> parameters{{"code", code}};
    if (!state.empty())
        parameters.emplace_back("state", state);
    return redirect(redirectUri, parameters);
}

OsduReply AuthorizationServer::token(const std::string& authorization, const std::string& body)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_fault == TokenFault::Fail)
        return oauthError(503, "temporarily_unavailable", "The authorization server is unavailable (injected)");
    std::map<std::string, std::string> form;
    ClientCredentials client;
    try {
        form = parseForm(body);
        client = clientCredentials(authorization, form);
    } catch (const std::invalid_argument& reason) {
        return oauthError(400, "invalid_request", std::string("The request is malformed: ") + reason.what());
    }
    if (client.id != m_config.clientId || (!m_config.clientSecret.empty() && client.secret != m_config.clientSecret)) {
        OsduReply refused = oauthError(401, "invalid_client", "Client authentication failed");
        if (client.byHeader)
            refused.headers.emplace_back("WWW-Authenticate", "Basic realm=\"oauth2\"");
        return refused;
    }
    if (m_fault == TokenFault::Refuse)
        return oauthError(400, "invalid_grant", "The grant was revoked (injected)");

    const std::string grantType = valueOf(form, "grant_type");
    if (grantType == "authorization_code")
        return exchangeCode(form, client.id);
    if (grantType == "refresh_token")
        return refresh(form, client.id);
    if (grantType.empty())
        return oauthError(400, "invalid_request", "grant_type is missing");
    return oauthError(400, "unsupported_grant_type", "The grant type " + grantType + " is not supported");
}

OsduReply AuthorizationServer::exchangeCode(const Form& form, const std::string& clientId)
{
    const std::string code = valueOf(form, "code");
    const std::string verifier = valueOf(form, "code_verifier");
    if (code.empty() || verifier.empty())
        return oauthError(400, "invalid_request", "code and code_verifier are required");
    const auto found = m_codes.find(code);
    if (found == m_codes.end())
        return oauthError(400, "invalid_grant",
                          m_usedCodes.count(code) ? "The authorization code was used already"
                                                  : "Unknown authorization code");
    // A code is spent by its first exchange, whether that succeeds or not.
    const PendingCode pending = found->second;
    m_codes.erase(found);
    m_usedCodes.insert(code);
    if (Clock::now() >= pending.expires)
        return oauthError(400, "invalid_grant", "The authorization code expired");
    if (pending.clientId != clientId)
        return oauthError(400, "invalid_grant", "The authorization code was issued to another client");
    if (valueOf(form, "redirect_uri") != pending.redirectUri)
        return oauthError(400, "invalid_grant", "redirect_uri differs from the authorization request");
    if (!isPkceText(verifier, 43, 128) || s256(verifier) != pending.challenge)
        return oauthError(400, "invalid_grant", "The code_verifier does not match the code_challenge");
    ++m_issued.codeExchanges;
    return issue(clientId, pending.scope, pending.consented || !m_config.refreshTokenOnlyWithConsent);
}

OsduReply AuthorizationServer::refresh(const Form& form, const std::string& clientId)
{
    const auto found = m_refreshTokens.find(valueOf(form, "refresh_token"));
    if (found == m_refreshTokens.end())
        return oauthError(400, "invalid_grant", "Unknown or already used refresh token");
    const Grant grant = found->second;
    // With rotation, the refresh token presented is spent either way.
    if (m_config.rotateRefreshTokens)
        m_refreshTokens.erase(found);
    if (Clock::now() >= grant.expires)
        return oauthError(400, "invalid_grant", "The refresh token expired");
    if (grant.clientId != clientId)
        return oauthError(400, "invalid_grant", "The refresh token was issued to another client");
    ++m_issued.refreshGrants;
    return issue(clientId, grant.scope, m_config.rotateRefreshTokens);
}

OsduReply AuthorizationServer::issue(const std::string& clientId, const std::string& scope, bool withRefreshToken)
{
    const Clock::time_point now = Clock::now();
    forgetExpired(now);
    const std::string accessToken = newSecret("access");
    m_accessTokens[accessToken] = {clientId, scope, now + m_config.accessTokenLifetime};

    const auto wholeSeconds = [](std::chrono::milliseconds lifetime) {
        return static_cast<Poco::Int64>(std::chrono::ceil<std::chrono::seconds>(lifetime).count());
    };
    Poco::JSON::Object::Ptr body = new Poco::JSON::Object;
    body->set("access_token", accessToken);
    body->set("token_type", m_config.tokenType);
    body->set("expires_in", wholeSeconds(m_config.accessTokenLifetime));
    if (withRefreshToken) {
        const std::string refreshToken = newSecret("refresh");
        m_refreshTokens[refreshToken] = {clientId, scope, now + m_config.refreshTokenLifetime};
        body->set("refresh_token", refreshToken);
        if (m_config.announceRefreshTokenLifetime)
            body->set("refresh_token_expires_in", wholeSeconds(m_config.refreshTokenLifetime));
    }
    body->set("scope", scope);
    OsduReply reply = OsduReply::json(200, body);
    reply.headers = {{"Cache-Control", "no-store"}, {"Pragma", "no-cache"}};
    return reply;
}

std::string AuthorizationServer::newSecret(const char* kind)
{
    if (m_config.issuedPrefix.empty())
        return randomToken();
    return m_config.issuedPrefix + kind + '-' + std::to_string(++m_secretsIssued);
}

void AuthorizationServer::forgetExpired(Clock::time_point now)
{
    for (auto* tokens : {&m_accessTokens, &m_refreshTokens}) {
        for (auto it = tokens->begin(); it != tokens->end();)
            it = now >= it->second.expires ? tokens->erase(it) : std::next(it);
    }
    for (auto it = m_codes.begin(); it != m_codes.end();)
        it = now >= it->second.expires ? m_codes.erase(it) : std::next(it);
}

bool AuthorizationServer::isValidAccessToken(const std::string& token) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_accessTokens.find(token);
    return found != m_accessTokens.end() && Clock::now() < found->second.expires;
}

void AuthorizationServer::setAccessTokenLifetime(std::chrono::milliseconds lifetime)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_config.accessTokenLifetime = lifetime;
}

void AuthorizationServer::setRefreshTokenLifetime(std::chrono::milliseconds lifetime)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_config.refreshTokenLifetime = lifetime;
}

void AuthorizationServer::setRefreshTokenOnlyWithConsent(bool only)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_config.refreshTokenOnlyWithConsent = only;
}

void AuthorizationServer::setTokenFault(TokenFault fault)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_fault = fault;
}

IssuedTokens AuthorizationServer::issuedTokens() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_issued;
}

std::string AuthorizationServer::lastAuthorizeQuery() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_lastAuthorizeQuery;
}

} // namespace emulator
