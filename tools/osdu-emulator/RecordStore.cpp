#include "RecordStore.h"

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace emulator {

namespace {

const int kMaxLimit = 1000;
const int kMaxWindow = 10000;
const std::size_t kMaxBatch = 100;

OsduReply badRequest(const std::string& message)
{
    return OsduReply::error(400, "Bad Request", message);
}

std::vector<std::string> segmentsOf(const std::string& kind)
{
    std::vector<std::string> segments;
    std::istringstream in(kind);
    std::string segment;
    while (std::getline(in, segment, ':'))
        segments.push_back(segment);
    if (!kind.empty() && kind.back() == ':')
        segments.emplace_back();
    return segments;
}

// A kind is authority:source:entity:version, each part non-empty.
bool isKind(const std::string& kind)
{
    const std::vector<std::string> segments = segmentsOf(kind);
    return segments.size() == 4
           && std::none_of(segments.begin(), segments.end(), [](const std::string& s) { return s.empty(); });
}

// '*' stands for any run of characters within one part of the kind.
bool globMatches(const std::string& pattern, const std::string& text)
{
    std::size_t p = 0, t = 0, starAt = std::string::npos, resumeAt = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            starAt = p++;
            resumeAt = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (starAt != std::string::npos) {
            p = starAt + 1;
            t = ++resumeAt;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string::npos;
}

bool kindMatches(const std::vector<std::string>& patterns, const std::string& kind)
{
    const std::vector<std::string> parts = segmentsOf(kind);
    return std::any_of(patterns.begin(), patterns.end(), [&parts](const std::string& pattern) {
        const std::vector<std::string> wanted = segmentsOf(pattern);
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            if (i >= parts.size() || !globMatches(wanted[i], parts[i]))
                return false;
        }
        return wanted.size() == parts.size();
    });
}

Poco::JSON::Object::Ptr parseObject(const std::string& body)
{
    try {
        return Poco::JSON::Parser().parse(body).extract<Poco::JSON::Object::Ptr>();
    } catch (const Poco::Exception&) {
        throw std::invalid_argument("The body is not a JSON object");
    }
}

// Absent gives fallback; anything but an integer in [min, max] is refused.
int integerMember(const Poco::JSON::Object::Ptr& object, const std::string& key, int fallback, int min, int max)
{
    if (!object->has(key))
        return fallback;
    const Poco::Dynamic::Var value = object->get(key);
    const Poco::Int64 number = value.isInteger() ? value.convert<Poco::Int64>() : Poco::Int64(min) - 1;
    if (number < min || number > max)
        throw std::invalid_argument(key + " must be an integer from " + std::to_string(min) + " to "
                                    + std::to_string(max));
    return static_cast<int>(number);
}

std::vector<std::string> kindPatterns(const Poco::JSON::Object::Ptr& request)
{
    std::vector<std::string> patterns;
    const Poco::Dynamic::Var kind = request->has("kind") ? request->get("kind") : Poco::Dynamic::Var();
    if (kind.isString()) {
        patterns.push_back(kind.extract<std::string>());
    } else if (const Poco::JSON::Array::Ptr list = request->getArray("kind")) {
        for (unsigned i = 0; i < list->size(); ++i)
            patterns.push_back(list->get(i).isString() ? list->getElement<std::string>(i) : std::string());
    }
    if (patterns.empty() || !std::all_of(patterns.begin(), patterns.end(), isKind))
        throw std::invalid_argument("kind must be authority:source:entity:version, or a list of such");
    return patterns;
}

std::string stringify(const Poco::Dynamic::Var& value)
{
    std::ostringstream out;
    Poco::JSON::Stringifier::stringify(value, out);
    return out.str();
}

} // namespace

RecordStore::RecordStore(std::string partition)
    : m_partition(std::move(partition)), m_nextVersion(1710000000000000) // microseconds, as the platform counts
{
}

void RecordStore::add(const std::string& id, const std::string& kind, const std::string& dataJson)
{
    const Poco::JSON::Object::Ptr data = Poco::JSON::Parser().parse(dataJson).extract<Poco::JSON::Object::Ptr>();
    const auto list = [](std::initializer_list<std::string> items) {
        Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
        for (const std::string& item : items)
            array->add(item);
        return array;
    };
    Poco::JSON::Object::Ptr acl = new Poco::JSON::Object;
    acl->set("viewers", list({"data.default.viewers@" + m_partition + ".example.com"}));
    acl->set("owners", list({"data.default.owners@" + m_partition + ".example.com"}));
    Poco::JSON::Object::Ptr legal = new Poco::JSON::Object;
    legal->set("legaltags", list({m_partition + "-public-usa-dataset-1"}));
    legal->set("otherRelevantDataCountries", list({"US"}));

    std::lock_guard<std::mutex> lock(m_mutex);
    const std::int64_t version = m_nextVersion++;
    Poco::JSON::Object::Ptr record = new Poco::JSON::Object;
    record->set("id", id);
    record->set("kind", kind);
    record->set("version", static_cast<Poco::Int64>(version));
    record->set("acl", acl);
    record->set("legal", legal);
    record->set("data", data);
    m_records[id] = {kind, version, stringify(record)};
}

std::size_t RecordStore::size() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_records.size();
}

void RecordStore::setFailing(const std::string& id)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_failing.insert(id);
}

void RecordStore::clearFailing()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_failing.clear();
}

OsduReply RecordStore::search(const std::string& body) const
{
    std::vector<std::string> patterns;
    int limit = 0;
    int offset = 0;
    try {
        const Poco::JSON::Object::Ptr request = parseObject(body);
        patterns = kindPatterns(request);
        limit = integerMember(request, "limit", 10, 1, kMaxLimit);
        offset = integerMember(request, "offset", 0, 0, kMaxWindow);
        if (offset + limit > kMaxWindow)
            throw std::invalid_argument("offset + limit must not exceed " + std::to_string(kMaxWindow));
    } catch (const std::invalid_argument& reason) {
        return badRequest(reason.what());
    }
    // "query" is not interpreted: the client narrows the hits down itself.

    Poco::JSON::Array::Ptr results = new Poco::JSON::Array;
    int total = 0;
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& entry : m_records) {
        if (!kindMatches(patterns, entry.second.kind))
            continue;
        if (total >= offset && total < offset + limit) {
            Poco::JSON::Object::Ptr hit = new Poco::JSON::Object;
            hit->set("id", entry.first);
            hit->set("kind", entry.second.kind);
            results->add(hit);
        }
        ++total;
    }
    Poco::JSON::Object::Ptr response = new Poco::JSON::Object;
    response->set("results", results);
    response->set("aggregations", Poco::Dynamic::Var());
    response->set("totalCount", total);
    return OsduReply::json(200, response);
}

OsduReply RecordStore::record(const std::string& id, const std::string& version) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_failing.count(id))
        return OsduReply::error(500, "Internal Server Error", "Unable to read the record " + id + " (injected)");
    const auto found = m_records.find(id);
    if (found == m_records.end() || (!version.empty() && version != std::to_string(found->second.version)))
        return OsduReply::error(404, "Record not found", "The record '" + id + "' was not found");
    return {200, found->second.json, "application/json", {}};
}

OsduReply RecordStore::queryRecords(const std::string& body) const
{
    std::vector<std::string> ids;
    try {
        const Poco::JSON::Array::Ptr list = parseObject(body)->getArray("records");
        for (unsigned i = 0; list && i < list->size(); ++i) {
            if (!list->get(i).isString())
                throw std::invalid_argument("records must hold record ids");
            ids.push_back(list->getElement<std::string>(i));
        }
        if (!list || ids.size() > kMaxBatch)
            throw std::invalid_argument("records must be a list of at most " + std::to_string(kMaxBatch) + " ids");
    } catch (const std::invalid_argument& reason) {
        return badRequest(reason.what());
    }

    std::string records;
    Poco::JSON::Array::Ptr invalid = new Poco::JSON::Array;
    Poco::JSON::Array::Ptr retry = new Poco::JSON::Array;
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const std::string& id : ids) {
        const auto found = m_records.find(id);
        if (m_failing.count(id)) {
            retry->add(id);
        } else if (found == m_records.end()) {
            invalid->add(id);
        } else {
            records += (records.empty() ? "" : ",") + found->second.json;
        }
    }
    // The records are kept as text already; splicing them in spares parsing each one again.
    return {200,
            "{\"records\":[" + records + "],\"invalidRecords\":" + stringify(invalid)
                + ",\"retryRecords\":" + stringify(retry) + "}",
            "application/json",
            {}};
}

} // namespace emulator
