// A key on the first line, then the JSON text jsonValue reads it from.

#include "FuzzInput.h"

#include <fast/client/VdsDescriptorParser.h>

#include <Poco/Exception.h>
#include <Poco/JSON/JSONException.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [key, json] = fuzz::firstLine(fuzz::text(data, size));
    try {
        fast::jsonValue(key, json);
    } catch (const Poco::JSON::JSONException&) {
    } catch (const Poco::BadCastException&) {
    } catch (const Poco::InvalidAccessException&) {
    }
    return 0;
}
