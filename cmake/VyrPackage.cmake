# scripts/package: a tarball that runs from any folder, and a Debian package.

set(CPACK_PACKAGE_NAME vyr-mtlx)
set(CPACK_PACKAGE_VENDOR "The Vyr MaterialX converter's developers")
set(CPACK_PACKAGE_CONTACT "maintainers@vyr-mtlx.invalid")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGE_FILE_NAME "vyr-mtlx-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_GENERATOR TGZ)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    # Its libraries are its own and must not be found by other programs, so it lives apart from the system's.
    list(APPEND CPACK_GENERATOR DEB)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_SOURCE_DIR}/cmake/VyrPackagePrefix.cmake")
    set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.36), libstdc++6 (>= 12), libgcc-s1 (>= 12)")
    set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
        "${PROJECT_SOURCE_DIR}/cmake/debian/postinst" "${PROJECT_SOURCE_DIR}/cmake/debian/prerm"
    )
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
endif()
include(CPack)
