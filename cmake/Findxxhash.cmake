# xxHash, of which only the header is used: the target xxhash::xxhash.

find_path(xxhash_INCLUDE_DIR xxhash.h)
mark_as_advanced(xxhash_INCLUDE_DIR)

# The hash that is used has kept its values since then.
if(xxhash_INCLUDE_DIR)
    file(STRINGS "${xxhash_INCLUDE_DIR}/xxhash.h" versions REGEX "#define XXH_VERSION_(MAJOR|MINOR|RELEASE)")
    string(REGEX REPLACE "[^0-9;]" "" versions "${versions}")
    list(JOIN versions "." xxhash_VERSION)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(xxhash REQUIRED_VARS xxhash_INCLUDE_DIR VERSION_VAR xxhash_VERSION)

if(xxhash_FOUND AND NOT TARGET xxhash::xxhash)
    add_library(xxhash::xxhash INTERFACE IMPORTED)
    set_target_properties(
        xxhash::xxhash
        PROPERTIES
            INTERFACE_INCLUDE_DIRECTORIES "${xxhash_INCLUDE_DIR}"
            INTERFACE_COMPILE_DEFINITIONS XXH_INLINE_ALL
    )
endif()
