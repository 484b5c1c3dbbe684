# 32-bit x86 under Linux.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
set(CMAKE_C_COMPILER i686-linux-gnu-gcc)
# The results of the older arithmetic differ from those of all other machines.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
# Runs by itself on an x86-64 kernel, with the compiler's own C library.
set(CMAKE_EXE_LINKER_FLAGS_INIT
  -Wl,--dynamic-linker=/usr/i686-linux-gnu/lib/ld-linux.so.2,-rpath,/usr/i686-linux-gnu/lib)
include(${CMAKE_CURRENT_LIST_DIR}/search.cmake)
