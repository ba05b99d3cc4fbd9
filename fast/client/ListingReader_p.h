#pragma once

#include <functional>
#include <string>
#include <vector>

// Internal to the library: how parseVdsInfos reads FAST's listings.
namespace fast {

// One field of a listing entry as the document would have held it.
struct ListingField
{
    enum State { Absent, Null, Value };
    State state = Absent;
    // The value as Poco::Dynamic::Var converts it to text: a string as itself, a number in
    // decimal, true or false, an object or array as its indented JSON.
    std::string text;
};

// One element of a listing: whether it is an object, and the fields asked for, in the order of
// the keys asked for. A key given twice in the entry counts with its last value.
struct ListingEntry
{
    bool isObject = false;
    std::vector<ListingField> fields;
};

// Reads json, an array of entries, as the parser goes, without building its document: onEntry
// sees every element of the root array in order, with the fields named by keys. The first
// exception onEntry throws ends the calls and is rethrown once the whole text has parsed, so
// that text that is not JSON is reported as such first, as a parse into a document would.
// Text that is not JSON throws Poco::JSON::JSONException; a root object throws the
// Poco::BadCastException that extracting an array from it throws.
void readListing(const std::string& json, const std::vector<std::string>& keys,
                 const std::function<void(const ListingEntry&)>& onEntry);

} // namespace fast
