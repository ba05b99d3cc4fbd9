// FAST's volume listing, a line "--", then its file listing, as parseVdsInfos gets them.

#include "FuzzInput.h"

#include <fast/client/VdsDescriptorParser.h>

#include <Poco/Exception.h>
#include <Poco/JSON/JSONException.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [volumes, files] = fuzz::splitAtLine(fuzz::text(data, size), "--");
    try {
        fast::parseVdsInfos(volumes, files);
    } catch (const Poco::JSON::JSONException&) {
    } catch (const Poco::BadCastException&) {
    } catch (const Poco::InvalidAccessException&) {
    } catch (const Poco::NullPointerException&) {
    }
    return 0;
}
