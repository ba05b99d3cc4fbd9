#pragma once

#include "AuthorizationServer.h"
#include "LoopbackEmulator.h"
#include "OsduReply.h"
#include "RecordStore.h"

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace emulator {

// A platform under load: data requests (search and storage) answered with status instead of
// their data, every k-th one (every > 0), or the first n ones (first > 0). Status 0 resets the
// connection without an answer. A 429 carries Retry-After with this text (seconds or an HTTP
// date) unless it is empty.
struct Throttling
{
    int status = 429;
    int every = 0;
    int first = 0;
    std::string retryAfter = "0";
};

struct OsduEmulatorOptions
{
    // 0 picks a free port at the first start; later starts reuse the port.
    unsigned short port = 0;
    std::string partition = "opendes";
    std::string clientId = "fast-panel";
    // Empty makes the client public: it then authenticates by its id alone.
    std::string clientSecret = "fast-panel-secret";
    int accessTokenSeconds = 3600;
    int refreshTokenSeconds = 86400;
    // Entra ID and Cognito do not say how long a refresh token lasts; false answers as they do.
    bool announceRefreshTokenLifetime = true;
    // When set, codes and tokens are this text plus "code-", "access-" or "refresh-" and a running
    // number instead of random text, so that a test knows each one and can look for it wherever
    // it must not turn up.
    std::string issuedPrefix;
    // The token answers' token_type.
    std::string tokenType = "Bearer";
    // A refresh token only for a sign-in that asked for prompt=consent (OpenID Connect Core 11).
    bool refreshTokenOnlyWithConsent = false;
    // false: refresh grants keep the refresh token and answer without a new one.
    bool rotateRefreshTokens = true;
    // Added to every request's answer, as setLatency().
    int latencyMs = 0;
    // When set, the data is guarded by another authorization server: an access token is valid
    // when that server's userinfo endpoint (this URL) accepts it, and the emulator's own tokens
    // are not.
    std::string userinfoUrl;
    // From the start, as setThrottling().
    Throttling throttling;
};

// One request as the emulator received it, with the headers a client is judged by.
struct OsduRequest
{
    std::string method;
    // Path and query, as sent.
    std::string target;
    std::string authorization;
    std::string dataPartitionId;
    std::string contentType;
    std::string body;
};

// An OSDU data platform (Search v2, Storage v2) and its OAuth 2.0 authorization server on
// 127.0.0.1 over real HTTP, for tests, benchmarks and the demo.
class OsduEmulator : public LoopbackEmulator
{
public:
    static constexpr const char* kFileCollectionKind = "osdu:wks:dataset--FileCollection.Bluware.OpenVDS:1.0.0";
    static constexpr const char* kDefaultSeedPrefix = "s3://fast-demo-bucket/volumes/";
    static constexpr int kEveryRequest = -1;

    explicit OsduEmulator(OsduEmulatorOptions options = {});
    ~OsduEmulator() override;

    std::string baseUrl() const;
    std::string authorizeUrl() const;
    std::string tokenUrl() const;
    const OsduEmulatorOptions& options() const { return m_options; }

    std::vector<OsduRequest> requests() const;
    void clearRequests();

    // Records. FileSourceInfos is left out when fileSources is empty, as the platform may.
    void addDataset(const std::string& id, const std::string& name, const std::string& description,
                    const std::string& fileCollectionPath, const std::string& kind = kFileCollectionKind,
                    const std::vector<std::string>& fileSources = {});
    // dataJson is the record's "data" object as JSON text.
    void addRecord(const std::string& id, const std::string& kind, const std::string& dataJson);
    // File collections numbered on from those seeded before: "<partition>:dataset--FileCollection.
    // Bluware.OpenVDS:vol-0001", "Volume 0001", folder "<prefix>vol-0001/" holding "vol-0001.vds".
    void seedDatasets(int count, const std::string& prefix = kDefaultSeedPrefix);
    std::string seededDatasetId(int number) const;
    std::size_t recordCount() const;

    // Failure injection; clearFaults() undoes all of it.
    void failRecordFetch(const std::string& id);
    // 401 to the next count search and storage requests, or to all of them, once the next
    // servedFirst have been answered as usual (a token revoked in the middle of a search); 0 ends it.
    void rejectDataRequests(int count = kEveryRequest, int servedFirst = 0);
    void setTokenFault(TokenFault fault);
    // Requests whose path begins with pathPrefix wait this long; the longest prefix wins.
    void setDelay(const std::string& pathPrefix, int delayMs);
    // Every request waits this much longer, as over a network far away; clearFaults() keeps it.
    void setLatency(int latencyMs);
    // Counts data requests from now on; clearFaults() ends it.
    void setThrottling(const Throttling& throttling);
    // Data requests answered by the throttling since it was set.
    int throttledRequests() const;
    void clearFaults();

    // Apply to tokens issued from now on.
    void setAccessTokenLifetime(std::chrono::milliseconds lifetime);
    void setRefreshTokenLifetime(std::chrono::milliseconds lifetime);
    // For sign-ins from now on.
    void setRefreshTokenOnlyWithConsent(bool only);
    IssuedTokens issuedTokens() const;
    std::string lastAuthorizeQuery() const;

    // For the HTTP layer: the answer, or nothing when the connection is to be reset (the emulator
    // stopped while holding the answer back, or the throttling resets it).
    std::optional<OsduReply> answer(const OsduRequest& request);

protected:
    Poco::Net::HTTPRequestHandler* newHandler() override;

private:
    OsduReply route(const OsduRequest& request, const std::string& path, const std::string& query);
    // The refusal, or nothing when the request may read the partition's data.
    std::optional<OsduReply> refuseAccess(const OsduRequest& request);
    int delayFor(const std::string& path) const;
    // The throttling's answer to this data request, if it is one of those it turns away; an
    // answer with status 0 means a reset.
    std::optional<OsduReply> throttle();

    OsduEmulatorOptions m_options;
    AuthorizationServer m_authorization;
    RecordStore m_records;

    mutable std::mutex m_mutex;
    std::vector<OsduRequest> m_requests;
    std::map<std::string, int> m_delays;
    int m_latencyMs = 0;
    int m_rejections = 0;
    int m_servedBeforeRejecting = 0;
    int m_seeded = 0;
    Throttling m_throttling;
    int m_dataRequests = 0;
    int m_throttled = 0;
};

} // namespace emulator
