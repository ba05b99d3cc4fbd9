// windows.h defines min and max as macros unless NOMINMAX is defined, and a std::min after it
// no longer compiles; MinGW-w64's does so in C only, so this is MSVC's windows.h in that respect.
#include_next <minwindef.h>
#if defined(__cplusplus) && !defined(NOMINMAX) && !defined(max) && !defined(min)
// MSVC's standard library shields itself from the macros; this one is read before them instead.
extern "C++" {
#include <bits/stdc++.h>
}
#define max(a, b) (((a) > (b)) ? (a) : (b))
#define min(a, b) (((a) < (b)) ? (a) : (b))
#endif
