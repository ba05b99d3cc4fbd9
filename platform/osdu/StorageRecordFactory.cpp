#include <osdu/StorageRecordFactory.h>

#include <Poco/Exception.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <stdexcept>
#include <utility>

namespace osdu {

namespace {

// Glob matching with '*' only, by backtracking to the last star: linear in practice, and no
// regular expression to trip over the dots and colons of a kind.
bool matches(const std::string& pattern, const std::string& text)
{
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = std::string::npos;
    std::size_t resume = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (star != std::string::npos) {
            p = star + 1;
            t = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

// A record of no registered kind still carries its id.
std::string recordId(const std::string& json)
{
    try {
        const Poco::JSON::Object::Ptr record = Poco::JSON::Parser().parse(json).extract<Poco::JSON::Object::Ptr>();
        return record->optValue<std::string>("id", std::string());
    } catch (const Poco::Exception&) {
        return {};
    }
}

class Factory : public StorageRecordFactory
{
public:
    void registerKind(const std::string& pattern, Deserialiser deserialiser) override
    {
        if (pattern.empty() || !deserialiser)
            throw std::invalid_argument("A record kind needs a pattern and a deserialiser");
        m_kinds.emplace_back(pattern, std::move(deserialiser));
    }

    std::shared_ptr<StorageRecord> create(const std::string& kind, const std::string& json) const override
    {
        for (const auto& [pattern, deserialiser] : m_kinds) {
            if (matches(pattern, kind))
                return deserialiser(json);
        }
        return std::make_shared<StorageRecord>(recordId(json), kind, json);
    }

private:
    std::vector<std::pair<std::string, Deserialiser>> m_kinds;
};

} // namespace

StorageRecordFactory::~StorageRecordFactory() = default;

std::shared_ptr<StorageRecordFactory> createStorageRecordFactory()
{
    return std::make_shared<Factory>();
}

} // namespace osdu
