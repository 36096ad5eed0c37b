# What holds for every target of the project, and only for those.

# vyr_target_defaults(<target>): language, warnings, visibility and sanitizers of own code.
function(vyr_target_defaults target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(
        ${target}
        PROPERTIES
            CXX_EXTENSIONS OFF
            CXX_VISIBILITY_PRESET hidden
            VISIBILITY_INLINES_HIDDEN ON
            POSITION_INDEPENDENT_CODE ON
    )
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 /fp:precise)
        target_compile_definitions(${target} PRIVATE NOMINMAX)
    else()
        target_compile_options(
            ${target}
            PRIVATE
                -Wall
                -Wextra
                -Wpedantic
                -Wcast-align
                -Wcast-qual
                -Wconversion
                -Wdouble-promotion
                -Wextra-semi
                -Wformat=2
                -Wold-style-cast
                -Woverloaded-virtual
                -Wshadow
                -Wsign-conversion
                -Wundef
                # False alarms of GCC where it inlines deep enough: members of a moved std::variant, the
                # addition of strings (its bug 105651), copies of vectors. What is certainly uninitialised
                # stays an error, and the sanitizers see all of it.
                "$<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-maybe-uninitialized;-Wno-restrict;-Wno-stringop-overflow>"
                # A fused multiply-add rounds differently: the same input would give different
                # bytes on different machines.
                -ffp-contract=off
        )
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # It sees overlaps in "text" + std::string() that are not there (GCC bug 105651).
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    if(VYR_WARNINGS_AS_ERRORS)
        set_target_properties(${target} PROPERTIES COMPILE_WARNING_AS_ERROR ON)
    endif()
    if(VYR_SANITIZE)
        set(sanitize -fsanitize=${VYR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_compile_options(${target} PRIVATE ${sanitize})
        target_link_options(${target} PRIVATE ${sanitize})
    endif()
endfunction()

# vyr_install_rpath(<target> <folder> <dependency>...): where an installed program or library looks for libraries: in a
# folder relative to its own; where the dependencies are not installed with it, then where they were found, which may be
# anywhere.
function(vyr_install_rpath target folder)
    if(APPLE)
        set(origin "@loader_path")
    else()
        set(origin "$ORIGIN")
    endif()
    set(folders "")
    if(NOT VYR_INSTALL_DEPENDENCIES)
        set(folders "${ARGN}")
        list(TRANSFORM folders REPLACE "(.+)" "$<TARGET_FILE_DIR:\\1>")
    endif()
    set_target_properties(
        ${target} PROPERTIES INSTALL_RPATH "${origin}${folder};${folders}"
    )
endfunction()

# vyr_add_folders(<folder>...): adds the folders in this order.
function(vyr_add_folders)
    foreach(folder IN LISTS ARGN)
        add_subdirectory(${folder})
    endforeach()
endfunction()
