#include <fast/client/VdsMetaTypes.h>

namespace fast {

void registerMetaTypes()
{
    qRegisterMetaType<VdsFile>("fast::VdsFile");
    qRegisterMetaType<VdsModel>("fast::VdsModel");
    // By name alone: no QMetaTypeId is declared for them, which leaves that to the host.
    qRegisterMetaType<std::string>("std::string");
    qRegisterMetaType<std::vector<VdsFile>>("std::vector<fast::VdsFile>");
}

} // namespace fast
