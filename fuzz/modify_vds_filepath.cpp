// A dataset's location as an OSDU record gives it, rewritten into the URL FAST takes.

#include "FuzzInput.h"

#include <fast/client/VirtualDrive.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fast::modifyVdsFilepath(fuzz::text(data, size));
    return 0;
}
