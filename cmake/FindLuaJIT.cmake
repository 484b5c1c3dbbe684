# Finds LuaJIT. Defines LuaJIT_FOUND, LuaJIT_INCLUDE_DIR and LuaJIT_LIBRARY.
find_path(LuaJIT_INCLUDE_DIR luajit.h PATH_SUFFIXES luajit-2.1)
find_library(LuaJIT_LIBRARY luajit-5.1)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LuaJIT REQUIRED_VARS LuaJIT_LIBRARY LuaJIT_INCLUDE_DIR)
mark_as_advanced(LuaJIT_INCLUDE_DIR LuaJIT_LIBRARY)
