# IBM Z under Linux: 64 bits, big-endian.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)
set(CMAKE_C_COMPILER s390x-linux-gnu-gcc)
include(${CMAKE_CURRENT_LIST_DIR}/search.cmake)
