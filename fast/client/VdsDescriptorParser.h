#pragma once

#include <fast/fastpanel_export.h>
#include <fast/client/VdsDescriptors.h>

#include <string>
#include <vector>

// Reading FAST's JSON: the two listings and the plug-in description.
//
// Text that is not JSON (numbers out of range included) throws Poco::JSON::JSONException. A
// listing whose root is not an array, or a jsonValue input whose root is not an object, throws
// Poco::BadCastException; a JSON null where a value is read throws
// Poco::InvalidAccessException; a listing element that is not an object throws
// Poco::NullPointerException. Every other irregularity is tolerated.
namespace fast {

// One VdsInfo per entry of the volume listing, in its order, each with the files of the file
// listing whose "vdsId" names it. Files of unknown volumes are dropped; when two volumes share
// an id, the first one gets the files. An empty or "null" listing counts as no entries.
FASTPANEL_EXPORT std::vector<VdsInfo> parseVdsInfos(const std::string& vdsListJson, const std::string& fileListJson);

// The value under key of the JSON object in json, as text: a string as itself, a number in
// decimal, an object or array as its JSON text. Empty when json is empty or has no such key.
FASTPANEL_EXPORT std::string jsonValue(const std::string& key, const std::string& json);

// Whether text, the whole body of FAST's answer to a registration or a mount, can be the id it
// handed out: one short word of letters, digits and "-_.:~", and no JSON literal. A service
// that answers anything else has not said which id it gave, whatever its status.
FASTPANEL_EXPORT bool isFastId(const std::string& text);

// The default extent under properties.subvolume.properties.dimN.properties.{min,max}.default;
// any missing level leaves the fields below it empty.
FASTPANEL_EXPORT SubvolumeRange parseSubvolumeRange(const std::string& pluginJson);

} // namespace fast
