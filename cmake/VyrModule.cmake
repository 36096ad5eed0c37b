# vyr_add_module(<name> SOURCES <file>... [DEPENDS <module>...] [LIBRARIES <target>...])
#
# Makes the folder src/<name> the internal object library vyr_<name>. DEPENDS names the modules below it
# in the order of layers, LIBRARIES what else it uses. A module's file looks like this:
#
#     vyr_add_module(
#         textures
#         SOURCES
#             BitmapTexture.cpp
#             BitmapTexture.h
#         DEPENDS graph baking
#         LIBRARIES MaterialXCore
#     )
#
# Headers are included by their path below src/: #include "graph/Names.h". What a module depends on, its
# users see too. Sources are listed one by one: a file that is not listed is not built.
function(vyr_add_module name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;DEPENDS;LIBRARIES")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "Module ${name}: unknown arguments ${arg_UNPARSED_ARGUMENTS}")
    endif()

    add_library(vyr_${name} OBJECT ${arg_SOURCES})
    vyr_target_defaults(vyr_${name})
    target_include_directories(vyr_${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
    target_compile_definitions(
        vyr_${name} PRIVATE VYR_MTLX_BUILDING VYR_MTLX_VERSION="${PROJECT_VERSION}"
    )

    # Objects of an object library reach only its direct users, so each module knows all below it.
    set(closure ${name})
    foreach(module IN LISTS arg_DEPENDS)
        target_link_libraries(vyr_${name} PUBLIC vyr_${module})
        get_property(below TARGET vyr_${module} PROPERTY VYR_MODULES)
        list(APPEND closure ${below})
    endforeach()
    list(REMOVE_DUPLICATES closure)
    set_property(TARGET vyr_${name} PROPERTY VYR_MODULES "${closure}")
    target_link_libraries(vyr_${name} PUBLIC vyr_base vyr_headers ${arg_LIBRARIES})
endfunction()

# vyr_link_modules(<target> <module>...): links the modules and all below them into a target.
function(vyr_link_modules target)
    set(modules "")
    foreach(module IN LISTS ARGN)
        get_property(closure TARGET vyr_${module} PROPERTY VYR_MODULES)
        list(APPEND modules ${closure})
    endforeach()
    list(REMOVE_DUPLICATES modules)
    list(TRANSFORM modules PREPEND vyr_)
    target_link_libraries(${target} PRIVATE ${modules})
endfunction()
