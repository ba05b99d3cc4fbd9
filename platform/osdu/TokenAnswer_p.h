#pragma once

// Internal to the library: what a token endpoint's answer grants.

#include <osdu/CurlSession.h>

#include <QDateTime>
#include <QString>

#include <string>

namespace osdu {

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

// The grant in the endpoint's answer, lifetimes counted from now. Any text is taken: what is
// not a usable answer is a failed grant, never an exception.
TokenGrant readTokenAnswer(const CurlResponse& response);

} // namespace osdu
