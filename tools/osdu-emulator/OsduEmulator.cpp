#include "OsduEmulator.h"

#include "UserinfoCheck.h"

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/Net/HTTPRequestHandler.h>
#include <Poco/Net/HTTPServerRequest.h>
#include <Poco/Net/HTTPServerRequestImpl.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/StreamCopier.h>
#include <Poco/String.h>
#include <Poco/URI.h>

#include <cstdio>
#include <iterator>

namespace emulator {

namespace {

const std::string kAuthorizePath = "/oauth2/authorize";
const std::string kTokenPath = "/oauth2/token";
const std::string kSearchPath = "/api/search/v2/query";
const std::string kRecordPath = "/api/storage/v2/records/";
const std::string kQueryRecordsPath = "/api/storage/v2/query/records";

const char* const kProcessing[] = {"post-stack time migration", "pre-stack depth migration", "full-angle stack",
                                   "near-angle stack", "far-angle stack"};

class RequestHandler : public Poco::Net::HTTPRequestHandler
{
public:
    explicit RequestHandler(OsduEmulator& emulator) : m_emulator(emulator) {}

    void handleRequest(Poco::Net::HTTPServerRequest& request, Poco::Net::HTTPServerResponse& response) override
    {
        OsduRequest received{request.getMethod(),
                             request.getURI(),
                             request.get("Authorization", ""),
                             request.get("data-partition-id", ""),
                             request.get("Content-Type", ""),
                             {}};
        Poco::StreamCopier::copyToString(request.stream(), received.body);
        const std::optional<OsduReply> reply = m_emulator.answer(received);
        if (!reply) {
            // Stopped while the answer was held back: the client sees the connection reset.
            auto& socket = static_cast<Poco::Net::HTTPServerRequestImpl&>(request).socket();
            socket.setLinger(true, 0);
            socket.close();
            return;
        }
        response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(reply->status));
        for (const auto& header : reply->headers)
            response.set(header.first, header.second);
        response.setContentType(reply->contentType);
        response.setContentLength(static_cast<std::streamsize>(reply->body.size()));
        response.send() << reply->body;
    }

private:
    OsduEmulator& m_emulator;
};

OsduReply unauthorized(const std::string& message, const std::string& challenge)
{
    OsduReply reply = OsduReply::error(401, "Unauthorized", message);
    reply.headers.emplace_back("WWW-Authenticate", challenge);
    return reply;
}

bool startsWith(const std::string& text, const std::string& prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

std::string fourDigits(int number)
{
    char text[16];
    std::snprintf(text, sizeof text, "%04d", number);
    return text;
}

// The texts of seeded dataset number (from 1): name, description, folder under prefix, file.
struct SeededTexts
{
    std::string name;
    std::string description;
    std::string folder;
    std::string file;
};

SeededTexts seededTexts(int number, const std::string& prefix)
{
    const std::string digits = fourDigits(number);
    return {"Volume " + digits,
            "Seismic volume " + std::to_string(number) + ", "
                + kProcessing[static_cast<std::size_t>(number - 1) % std::size(kProcessing)] + ", survey block "
                + static_cast<char>('A' + (number - 1) / 10 % 26),
            prefix + "vol-" + digits + "/", "vol-" + digits + ".vds"};
}

} // namespace

OsduEmulator::OsduEmulator(OsduEmulatorOptions options)
    : LoopbackEmulator(options.port), m_options(std::move(options)),
      m_authorization({m_options.clientId, m_options.clientSecret, std::chrono::seconds(m_options.accessTokenSeconds),
                       std::chrono::seconds(m_options.refreshTokenSeconds), m_options.announceRefreshTokenLifetime,
                       m_options.issuedPrefix, m_options.tokenType, m_options.refreshTokenOnlyWithConsent,
                       m_options.rotateRefreshTokens}),
      m_records(m_options.partition), m_latencyMs(m_options.latencyMs), m_throttling(m_options.throttling)
{
}

OsduEmulator::~OsduEmulator()
{
    stop();
}

Poco::Net::HTTPRequestHandler* OsduEmulator::newHandler()
{
    return new RequestHandler(*this);
}

std::string OsduEmulator::baseUrl() const
{
    return "http://127.0.0.1:" + std::to_string(port());
}

std::string OsduEmulator::authorizeUrl() const
{
    return baseUrl() + kAuthorizePath;
}

std::string OsduEmulator::tokenUrl() const
{
    return baseUrl() + kTokenPath;
}

std::vector<OsduRequest> OsduEmulator::requests() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

void OsduEmulator::clearRequests()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.clear();
}

void OsduEmulator::addDataset(const std::string& id, const std::string& name, const std::string& description,
                              const std::string& fileCollectionPath, const std::string& kind,
                              const std::vector<std::string>& fileSources)
{
    Poco::JSON::Object::Ptr properties = new Poco::JSON::Object;
    properties->set("FileCollectionPath", fileCollectionPath);
    if (!fileSources.empty()) {
        Poco::JSON::Array::Ptr infos = new Poco::JSON::Array;
        for (const std::string& source : fileSources) {
            Poco::JSON::Object::Ptr info = new Poco::JSON::Object;
            info->set("FileSource", source);
            infos->add(info);
        }
        properties->set("FileSourceInfos", infos);
    }
    Poco::JSON::Object::Ptr data = new Poco::JSON::Object;
    data->set("Name", name);
    data->set("Description", description);
    data->set("DatasetProperties", properties);
    m_records.add(id, kind, OsduReply::json(200, data).body);
}

void OsduEmulator::addRecord(const std::string& id, const std::string& kind, const std::string& dataJson)
{
    m_records.add(id, kind, dataJson);
}

void OsduEmulator::seedDatasets(int count, const std::string& prefix)
{
    int first = 0;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        first = m_seeded + 1;
        m_seeded += count;
    }
    for (int number = first; number < first + count; ++number) {
        const SeededTexts texts = seededTexts(number, prefix);
        addDataset(seededDatasetId(number), texts.name, texts.description, texts.folder, kFileCollectionKind,
                   {texts.file});
    }
}

std::string OsduEmulator::seededDatasetId(int number) const
{
    return m_options.partition + ":dataset--FileCollection.Bluware.OpenVDS:vol-" + fourDigits(number);
}

std::size_t OsduEmulator::recordCount() const
{
    return m_records.size();
}

void OsduEmulator::failRecordFetch(const std::string& id)
{
    m_records.setFailing(id);
}

void OsduEmulator::rejectDataRequests(int count, int servedFirst)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_rejections = count;
    m_servedBeforeRejecting = servedFirst;
}

void OsduEmulator::setTokenFault(TokenFault fault)
{
    m_authorization.setTokenFault(fault);
}

void OsduEmulator::setLatency(int latencyMs)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_latencyMs = latencyMs;
}

void OsduEmulator::setDelay(const std::string& pathPrefix, int delayMs)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_delays[pathPrefix] = delayMs;
}

void OsduEmulator::setThrottling(const Throttling& throttling)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_throttling = throttling;
    m_dataRequests = 0;
    m_throttled = 0;
}

int OsduEmulator::throttledRequests() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_throttled;
}

std::optional<OsduReply> OsduEmulator::throttle()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const int number = ++m_dataRequests;
    const bool turnedAway = (m_throttling.every > 0 && number % m_throttling.every == 0)
                            || (m_throttling.first > 0 && number <= m_throttling.first);
    if (!turnedAway)
        return std::nullopt;
    ++m_throttled;
    if (m_throttling.status == 0)
        return OsduReply{0, {}, {}, {}};
    const char* reason = m_throttling.status == 429   ? "Too Many Requests"
                         : m_throttling.status == 502 ? "Bad Gateway"
                         : m_throttling.status == 503 ? "Service Unavailable"
                                                      : "Gateway Timeout";
    OsduReply reply = OsduReply::error(m_throttling.status, reason, std::string(reason) + " (injected)");
    if (m_throttling.status == 429 && !m_throttling.retryAfter.empty())
        reply.headers.emplace_back("Retry-After", m_throttling.retryAfter);
    return reply;
}

void OsduEmulator::clearFaults()
{
    m_records.clearFailing();
    m_authorization.setTokenFault(TokenFault::None);
    std::lock_guard<std::mutex> lock(m_mutex);
    m_rejections = 0;
    m_servedBeforeRejecting = 0;
    m_delays.clear();
    m_throttling = Throttling{};
}

void OsduEmulator::setAccessTokenLifetime(std::chrono::milliseconds lifetime)
{
    m_authorization.setAccessTokenLifetime(lifetime);
}

void OsduEmulator::setRefreshTokenLifetime(std::chrono::milliseconds lifetime)
{
    m_authorization.setRefreshTokenLifetime(lifetime);
}

void OsduEmulator::setRefreshTokenOnlyWithConsent(bool only)
{
    m_authorization.setRefreshTokenOnlyWithConsent(only);
}

IssuedTokens OsduEmulator::issuedTokens() const
{
    return m_authorization.issuedTokens();
}

std::string OsduEmulator::lastAuthorizeQuery() const
{
    return m_authorization.lastAuthorizeQuery();
}

std::optional<OsduReply> OsduEmulator::answer(const OsduRequest& request)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_requests.push_back(request);
    }
    const std::size_t queryAt = request.target.find('?');
    const std::string path = request.target.substr(0, queryAt);
    const std::string query = queryAt == std::string::npos ? std::string() : request.target.substr(queryAt + 1);
    // A platform's gateway turns a request away at its door, before the services behind it do
    // any work: only the requests let in take the time the platform takes.
    if (path == kSearchPath || path == kQueryRecordsPath || startsWith(path, kRecordPath)) {
        if (std::optional<OsduReply> turnedAway = throttle())
            return turnedAway->status == 0 ? std::nullopt : turnedAway;
    }
    const int delayMs = delayFor(path);
    if (delayMs > 0 && !http().holdBack(delayMs))
        return std::nullopt;
    return route(request, path, query);
}

OsduReply OsduEmulator::route(const OsduRequest& request, const std::string& path, const std::string& query)
{
    const bool get = request.method == "GET";
    const bool post = request.method == "POST";
    const auto wrongMethod = [&] {
        return OsduReply::error(405, "Method Not Allowed", request.method + " is not allowed on " + path);
    };
    if (path == kAuthorizePath)
        return get ? m_authorization.authorize(query) : wrongMethod();
    if (path == kTokenPath)
        return post ? m_authorization.token(request.authorization, request.body) : wrongMethod();

    const bool search = path == kSearchPath;
    const bool queryRecords = path == kQueryRecordsPath;
    const bool record = startsWith(path, kRecordPath) && path.size() > kRecordPath.size();
    if (!search && !queryRecords && !record)
        return OsduReply::error(404, "Not Found", "No resource at " + path);
    if (record ? !get : !post)
        return wrongMethod();
    if (std::optional<OsduReply> refusal = refuseAccess(request))
        return *refusal;
    if (search)
        return m_records.search(request.body);
    if (queryRecords)
        return m_records.queryRecords(request.body);

    // records/{id} or records/{id}/{version}; ids hold no slash but often a percent-encoded colon.
    const std::string rest = path.substr(kRecordPath.size());
    const std::size_t slash = rest.find('/');
    std::string id;
    Poco::URI::decode(rest.substr(0, slash), id);
    return m_records.record(id, slash == std::string::npos ? std::string() : rest.substr(slash + 1));
}

std::optional<OsduReply> OsduEmulator::refuseAccess(const OsduRequest& request)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_rejections != 0 && m_servedBeforeRejecting > 0) {
            --m_servedBeforeRejecting;
        } else if (m_rejections != 0) {
            if (m_rejections > 0)
                --m_rejections;
            return unauthorized("The access token was rejected (injected)", "Bearer error=\"invalid_token\"");
        }
    }
    const std::string scheme = "bearer ";
    if (Poco::toLower(request.authorization.substr(0, scheme.size())) != scheme)
        return unauthorized("An access token is required", "Bearer realm=\"osdu\"");
    const std::string token = Poco::trim(request.authorization.substr(scheme.size()));
    if (m_options.userinfoUrl.empty() ? !m_authorization.isValidAccessToken(token)
                                      : !acceptedByUserinfo(m_options.userinfoUrl, token))
        return unauthorized("The access token is invalid or expired", "Bearer error=\"invalid_token\"");
    if (request.dataPartitionId.empty())
        return OsduReply::error(400, "Bad Request", "The data-partition-id header is missing");
    if (request.dataPartitionId != m_options.partition)
        return OsduReply::error(403, "Forbidden", "No access to the data partition " + request.dataPartitionId);
    if (request.method == "POST" && !startsWith(Poco::toLower(request.contentType), "application/json"))
        return OsduReply::error(415, "Unsupported Media Type", "The body must be application/json");
    return std::nullopt;
}

int OsduEmulator::delayFor(const std::string& path) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t longest = 0;
    int delayMs = 0;
    for (const auto& delay : m_delays) {
        if (startsWith(path, delay.first) && delay.first.size() >= longest) {
            longest = delay.first.size();
            delayMs = delay.second;
        }
    }
    return delayMs + m_latencyMs;
}

} // namespace emulator
