# What is used is installed with the project, so that an installed folder needs nothing but the system's own libraries and
# can be moved: shared libraries, MaterialX's data library and what a host needs to compile against MaterialX.

get_target_property(materialx_library MaterialXCore LOCATION)
cmake_path(GET materialx_library PARENT_PATH materialx_folder)
get_target_property(openimageio_library OpenImageIO::OpenImageIO LOCATION)
cmake_path(GET openimageio_library PARENT_PATH openimageio_folder)

# The C and C++ libraries are the system's.
install(
    RUNTIME_DEPENDENCY_SET vyr_dependencies
    PRE_EXCLUDE_REGEXES
        "^lib(c|m|dl|rt|pthread|stdc\\+\\+|gcc_s|resolv)\\.so" "^ld-linux" "^libvyr_mtlx_"
    DIRECTORIES "${materialx_folder}" "${openimageio_folder}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FRAMEWORK DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
)
file(GLOB materialx_libraries "${materialx_folder}/libMaterialX*")
install(FILES ${materialx_libraries} DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY "${materialx_folder}/cmake/MaterialX" DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake")
install(
    DIRECTORY
        "${materialx_folder}/../include/MaterialXCore"
        "${materialx_folder}/../include/MaterialXFormat"
        "${materialx_folder}/../include/MaterialXGenShader"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
)
# At the same place as in its own tree, where its package and the converter look for it.
install(DIRECTORY "${MATERIALX_STDLIB_DIR}/" DESTINATION "libraries")

# Folders of this machine, where libraries were built, are no places to look in.
install(
    CODE "set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}\")
file(GLOB libraries \"\${folder}/libMaterialX*.so.*.*\" \"\${folder}/libOpenImageIO*.so.*\")
foreach(library IN LISTS libraries)
    if(NOT IS_SYMLINK \"\${library}\")
        file(RPATH_SET FILE \"\${library}\" NEW_RPATH \"\$ORIGIN\")
    endif()
endforeach()"
)

include(VyrNotices)
vyr_install_notices("${CMAKE_INSTALL_DATADIR}/doc/vyr_mtlx_converter")
