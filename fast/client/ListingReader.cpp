#include "ListingReader_p.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Handler.h>
#include <Poco/JSON/JSONException.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/ParseHandler.h>
#include <Poco/JSON/Parser.h>

#include <exception>
#include <memory>

namespace fast {

namespace {

// Nesting levels: outside the root, inside the root array, inside an entry.
constexpr int kRoot = 0;
constexpr int kEntries = 1;
constexpr int kFields = 2;

// Follows the parser's events and hands each entry over as soon as it is complete. Values below
// the entries' own fields are skipped, except under a key asked for: those are built as the
// document would hold them, to be turned into the same text.
class ListingHandler : public Poco::JSON::Handler
{
public:
    ListingHandler(const std::vector<std::string>& keys, const std::function<void(const ListingEntry&)>& onEntry)
        : m_keys(keys), m_onEntry(onEntry)
    {
        m_entry.isObject = true;
        m_entry.fields.resize(keys.size());
    }

    // After the parse: what reading the document would have thrown. A root object fails where
    // the document's root is taken for an array, with that very exception.
    void finish() const
    {
        if (m_rootIsObject)
            Poco::Dynamic::Var(Poco::JSON::Object::Ptr(new Poco::JSON::Object)).extract<Poco::JSON::Array::Ptr>();
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

    void reset() override {}

    void startObject() override { open(true); }
    void startArray() override { open(false); }
    void endObject() override { close(true); }
    void endArray() override { close(false); }

    void key(const std::string& k) override
    {
        if (m_nested) {
            m_nested->key(k);
            return;
        }
        if (m_depth != kFields)
            return;
        m_field = nullptr;
        for (std::size_t i = 0; i < m_keys.size(); ++i) {
            if (m_keys[i] == k)
                m_field = &m_entry.fields[i];
        }
    }

    void null() override
    {
        if (m_nested)
            m_nested->null();
        else if (m_depth == kRoot)
            refuseScalarRoot();
        else if (m_depth == kEntries)
            deliverNonObject();
        else if (m_depth == kFields && m_field)
            *m_field = {ListingField::Null, {}};
    }

    void value(int v) override { scalar(v); }
    void value(unsigned v) override { scalar(v); }
    void value(Poco::Int64 v) override { scalar(v); }
    void value(Poco::UInt64 v) override { scalar(v); }
    void value(const std::string& v) override { scalar(v); }
    void value(double d) override { scalar(d); }
    void value(bool b) override { scalar(b); }

private:
    template<typename T>
    void scalar(const T& v)
    {
        if (m_nested)
            m_nested->value(v);
        else if (m_depth == kRoot)
            refuseScalarRoot();
        else if (m_depth == kEntries)
            deliverNonObject();
        else if (m_depth == kFields && m_field)
            *m_field = {ListingField::Value, Poco::Dynamic::Var(v).convert<std::string>()};
    }

    void open(bool object)
    {
        if (m_depth == kRoot) {
            m_rootIsObject = object;
        } else if (m_depth == kEntries && object) {
            for (ListingField& field : m_entry.fields)
                field = {};
            m_field = nullptr;
        } else if (m_depth == kEntries) {
            deliverNonObject();
        } else if (m_depth == kFields && m_field) {
            m_nested = std::make_unique<Poco::JSON::ParseHandler>();
            m_nestedField = m_field;
        }
        if (m_nested)
            object ? m_nested->startObject() : m_nested->startArray();
        ++m_depth;
    }

    void close(bool object)
    {
        --m_depth;
        if (m_nested) {
            object ? m_nested->endObject() : m_nested->endArray();
            if (m_depth == kFields) {
                *m_nestedField = {ListingField::Value, m_nested->asVar().convert<std::string>()};
                m_nested.reset();
            }
        } else if (m_depth == kEntries && object) {
            deliver(m_entry);
        }
    }

    // The document's parser takes only an object or an array as the root, and says so as it
    // meets the value.
    [[noreturn]] static void refuseScalarRoot()
    {
        throw Poco::JSON::JSONException("Attempt to set value on an empty stack");
    }

    void deliverNonObject()
    {
        ListingEntry entry;
        entry.isObject = false;
        entry.fields.resize(m_keys.size());
        deliver(entry);
    }

    void deliver(const ListingEntry& entry)
    {
        // Nothing inside a root that is not an array counts.
        if (m_failure || m_rootIsObject)
            return;
        try {
            m_onEntry(entry);
        } catch (...) {
            m_failure = std::current_exception();
        }
    }

    const std::vector<std::string>& m_keys;
    const std::function<void(const ListingEntry&)>& m_onEntry;
    int m_depth = kRoot;
    bool m_rootIsObject = false;
    ListingEntry m_entry;
    ListingField* m_field = nullptr;
    std::unique_ptr<Poco::JSON::ParseHandler> m_nested;
    ListingField* m_nestedField = nullptr;
    std::exception_ptr m_failure;
};

} // namespace

void readListing(const std::string& json, const std::vector<std::string>& keys,
                 const std::function<void(const ListingEntry&)>& onEntry)
{
    auto* listing = new ListingHandler(keys, onEntry);
    const Poco::JSON::Handler::Ptr handler(listing);
    try {
        Poco::JSON::Parser(handler).parse(json);
    } catch (const Poco::SyntaxException& failure) {
        // A number out of range comes as the generic syntax exception; callers tell bad JSON by
        // the JSON one alone.
        throw Poco::JSON::JSONException(failure.message());
    }
    listing->finish();
}

} // namespace fast
