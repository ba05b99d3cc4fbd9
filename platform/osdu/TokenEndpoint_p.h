#pragma once

// Internal to the library: one exchange with an OAuth 2.0 token endpoint.

#include "TokenAnswer_p.h"

#include <QByteArray>

#include <atomic>
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
    const std::atomic<bool>* cancelled = nullptr; // true ends the exchange early, within about a second
};

QByteArray percentEncoded(const std::string& text);
std::string formEncoded(const FieldList& fields);
QByteArray base64Url(const QByteArray& bytes);

// Blocking; safe from any thread.
TokenGrant requestTokens(const TokenRequest& request);

} // namespace osdu
