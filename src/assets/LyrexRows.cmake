# Writes the rows of the Lyrex properties for C++ from the inputs of the shading nodes' definitions, whose docs, defaults
# and ranges they have. Run with -D DEFINITIONS=... -D HEADER=...
cmake_minimum_required(VERSION 3.26)

# The value of an attribute, without the escapes of XML.
function(attribute element name result)
    string(REGEX MATCH "[ \n]${name}=\"([^\"]*)\"" found "${element}")
    set(text "${CMAKE_MATCH_1}")
    foreach(escape IN ITEMS "lt:<" "gt:>" "quot:\\\"" "amp:&")
        string(REGEX REPLACE ":.*" "" entity "${escape}")
        string(REGEX REPLACE "^[a-z]+:" "" character "${escape}")
        string(REPLACE "&${entity}%" "${character}" text "${text}")
    endforeach()
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

# "0.5, 1" as literals of floats.
function(floats text result)
    string(REGEX REPLACE "([0-9]+)([,]|$)" "\\1_\\2" text "${text}")
    string(REGEX REPLACE "(\\.[0-9]+)_" "\\1f" text "${text}")
    string(REPLACE "_" ".0f" text "${text}")
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

set(kinds_color3 "Color")
set(kinds_float "Scalar")
set(kinds_vector3 "Vector")
set(kinds_boolean "Boolean")

# Lists of CMake end at a semicolon, which docs may have.
file(READ "${DEFINITIONS}" text)
string(REPLACE ";" "%" text "${text}")
string(REGEX MATCHALL "<nodedef [^>]*>|<input [^>]*/>|</nodedef>" elements "${text}")
set(rows "")
set(node "")
foreach(element IN LISTS elements)
    attribute("${element}" name name)
    if(element MATCHES "^<nodedef")
        attribute("${element}" node node)
        attribute("${element}" doc doc)
        string(REGEX REPLACE "\\.$" "" doc "${doc}")
        set(isShader FALSE)
        if(name MATCHES "_surfaceshader$")
            set(isShader TRUE)
            string(APPEND rows "inline constexpr const char ${node}Meaning[] =\n    \"${doc}. \"\n    \"Its properties are the inputs of kvor:${node}\";\n")
            string(APPEND rows "inline constexpr PropertyRow ${node}Rows[] = {\n")
        endif()
    elseif(NOT isShader)
        continue()
    elseif(element STREQUAL "</nodedef>")
        string(APPEND rows "};\n\n")
    else()
        foreach(key IN ITEMS type value unittype unit uimin uimax doc)
            attribute("${element}" ${key} ${key})
        endforeach()
        string(REGEX REPLACE "\\.$" "" doc "${doc}")
        if(unittype STREQUAL "distance")
            set(unit "length")
        endif()
        set(texture true)
        set(known true)
        if(type STREQUAL "boolean")
            set(texture false)
            string(REPLACE "true" "1" value "${value}")
            string(REPLACE "false" "0" value "${value}")
        endif()
        if(value STREQUAL "")
            set(known false)
        endif()
        floats("${value}" value)
        set(range "")
        foreach(end IN ITEMS least:uimin most:uimax)
            string(REGEX REPLACE ".*:" "" bound "${end}")
            string(REGEX REPLACE ":.*" "" member "${end}")
            string(REGEX REPLACE ",.*" "" bound "${${bound}}")
            if(NOT bound STREQUAL "")
                floats("${bound}" bound)
                string(APPEND range " .${member} = ${bound},")
            endif()
        endforeach()
        string(
            APPEND rows
            "    {.name = \"${name}\", .kind = PropertyKind::${kinds_${type}}, .meaning = \"${doc}\",\n"
            "     .fallback = {${value}}, .unit = \"${unit}\",${range} .takesTexture = ${texture},\n"
            "     .hasFallback = ${known}},\n"
        )
    endif()
endforeach()
string(REPLACE "%" ";" rows "${rows}")
file(
    WRITE "${HEADER}"
    "#pragma once\n\n#include <MaterialTranslation/Schemas.h>\n\n"
    "// Made by src/assets/LyrexRows.cmake.\n"
    "namespace vyr::MaterialTranslation::assets::lyrex\n{\n\n${rows}}\n"
)
