// The FAST settings keys declared in Fast.h, in a source of their own: the virtual-drive helpers
// read them too, also where they are built without the client (the fuzzers).

#include <fast/client/Fast.h>

namespace fast {

const std::string FAST_GROUP = "FAST";
const std::string FAST_HOST = "FAST_HOST";
const std::string FAST_PORT = "FAST_PORT";
const std::string FAST_MOUNT_POINT = "FAST_MOUNT_POINT";

} // namespace fast
