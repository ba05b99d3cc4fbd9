# Debian's MinGW-w64 g++ for 64-bit Windows, in its POSIX-threads flavour: the win32 flavour of
# GCC 12 has no std::thread or std::mutex, which platform/osdu uses.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
