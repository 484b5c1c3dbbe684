# Finds xxHash, as a library or as its header alone: xxHash::xxhash
find_path(xxHash_INCLUDE_DIR xxhash.h)
find_library(xxHash_LIBRARY xxhash)
mark_as_advanced(xxHash_INCLUDE_DIR xxHash_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(xxHash REQUIRED_VARS xxHash_INCLUDE_DIR)

if(xxHash_FOUND AND NOT TARGET xxHash::xxhash)
  if(xxHash_LIBRARY)
    add_library(xxHash::xxhash UNKNOWN IMPORTED)
    set_target_properties(xxHash::xxhash PROPERTIES IMPORTED_LOCATION ${xxHash_LIBRARY})
  else()
    add_library(xxHash::xxhash INTERFACE IMPORTED)
    set_target_properties(xxHash::xxhash PROPERTIES
      INTERFACE_COMPILE_DEFINITIONS XXH_INLINE_ALL)
  endif()
  set_target_properties(xxHash::xxhash PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES ${xxHash_INCLUDE_DIR})
endif()
