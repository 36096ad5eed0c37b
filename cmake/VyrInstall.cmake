# cmake --install: libraries, exported headers, platform headers, CMake package, and what else was built.

include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/vyr_mtlx_converter")

set_target_properties(vyr_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(vyr_headers PROPERTIES EXPORT_NAME headers)
install(
    TARGETS vyr_mtlx_converter vyr_mtlx_bakes vyr_headers vyr_platform
    EXPORT vyr_mtlx_converter
    RUNTIME_DEPENDENCY_SET vyr_dependencies
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
)
foreach(folder IN ITEMS include platform)
    install(
        DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
        FILES_MATCHING
        PATTERN "*.h"
    )
endforeach()

if(TARGET vyr_assetlib)
    set_target_properties(vyr_assetlib PROPERTIES EXPORT_NAME assetlib)
    set_target_properties(vyr_base PROPERTIES EXPORT_NAME base)
    install(
        TARGETS vyr_assetlib vyr_base
        EXPORT vyr_mtlx_converter
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    )
endif()
if(TARGET vyr-mtlx)
    vyr_install_rpath(vyr-mtlx "/../${CMAKE_INSTALL_LIBDIR}" MaterialXCore)
    install(
        TARGETS vyr-mtlx
        RUNTIME_DEPENDENCY_SET vyr_dependencies
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    )
endif()
if(IS_DIRECTORY "${PROJECT_SOURCE_DIR}/libraries")
    install(
        DIRECTORY "${PROJECT_SOURCE_DIR}/libraries/"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/vyr_mtlx_converter/libraries"
        FILES_MATCHING
        PATTERN "*.mtlx"
    )
endif()

if(VYR_INSTALL_DEPENDENCIES)
    include("${CMAKE_CURRENT_LIST_DIR}/VyrInstallDependencies.cmake")
endif()

install(EXPORT vyr_mtlx_converter NAMESPACE vyr:: DESTINATION "${package_folder}")
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/vyr_mtlx_converterConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/vyr_mtlx_converterConfig.cmake"
    INSTALL_DESTINATION "${package_folder}"
    PATH_VARS CMAKE_INSTALL_DATADIR
)
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/vyr_mtlx_converterConfigVersion.cmake" COMPATIBILITY SameMinorVersion
)
install(
    FILES
        "${PROJECT_BINARY_DIR}/vyr_mtlx_converterConfig.cmake"
        "${PROJECT_BINARY_DIR}/vyr_mtlx_converterConfigVersion.cmake"
        "${PROJECT_SOURCE_DIR}/cmake/Findutf8proc.cmake"
    DESTINATION "${package_folder}"
)

configure_file(
    "${PROJECT_SOURCE_DIR}/cmake/vyr_mtlx_converter.pc.in" "${PROJECT_BINARY_DIR}/vyr_mtlx_converter.pc" @ONLY
)
install(
    FILES "${PROJECT_BINARY_DIR}/vyr_mtlx_converter.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
)
add_custom_target(
    uninstall
    COMMAND
        "${CMAKE_COMMAND}" -D "MANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt" -P
        "${CMAKE_CURRENT_LIST_DIR}/Uninstall.cmake"
    VERBATIM
)
include("${CMAKE_CURRENT_LIST_DIR}/VyrPackage.cmake")
