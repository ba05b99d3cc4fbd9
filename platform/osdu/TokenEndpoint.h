#pragma once

// Internal to the library: one exchange with an OAuth 2.0 token endpoint.

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <string>
#include <utility>
#include <vector>

namespace osdu {

using FieldList = std::vector<std::pair<std::string, std::string>>;

struct TokenRequest
{
    std::string url;
    FieldList form;
    FieldList headers;
    long timeoutMs = 0;
};

struct TokenGrant
{
    bool ok = false;
    // The server turned the grant down for good (400/401), as opposed to being unreachable
    // or failing on its side.
    bool refused = false;
    std::string accessToken;
    QDateTime accessExpiry;
    std::string refreshToken; // empty when the server kept the old one
    QDateTime refreshExpiry;  // invalid when the server did not say
    // On failure: a sentence for a person, and the server's or the transport's own words.
    // Neither ever holds what was sent.
    QString message;
    QString details;
};

QByteArray percentEncoded(const std::string& text);
std::string formEncoded(const FieldList& fields);
QByteArray base64Url(const QByteArray& bytes);

// Blocking; safe from any thread.
TokenGrant requestTokens(const TokenRequest& request);

} // namespace osdu
