// The plug-in description FAST gives for one volume.

#include "FuzzInput.h"

#include <fast/client/VdsDescriptorParser.h>

#include <Poco/Exception.h>
#include <Poco/JSON/JSONException.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        fast::parseSubvolumeRange(fuzz::text(data, size));
    } catch (const Poco::JSON::JSONException&) {
    } catch (const Poco::BadCastException&) {
    } catch (const Poco::InvalidAccessException&) {
    }
    return 0;
}
