// MinGW-w64's C++ library defines NOMINMAX for every program; MSVC's does not. Leave it to the
// sources, as under MSVC, so that minwindef.h beside this file sees what windows.h sees there.
#ifdef NOMINMAX
#include_next <bits/os_defines.h>
#else
#include_next <bits/os_defines.h>
#undef NOMINMAX
#endif
