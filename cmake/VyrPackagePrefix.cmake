# Read by cpack for each kind of package: only the Debian package has a place of its own.
if(CPACK_GENERATOR STREQUAL "DEB")
    set(CPACK_PACKAGING_INSTALL_PREFIX /opt/vyr-mtlx)
endif()
