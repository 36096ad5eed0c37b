# Installs a build into a folder, then configures, builds and runs the example of a host against what was installed.
# What is installed stands alone: it is moved first, and nothing else is named.
# Arguments: SOURCE (the project's), BUILD, FOLDER, GENERATOR, MAKE_PROGRAM, COMPILER.

file(REMOVE_RECURSE "${FOLDER}")

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# expect(<text> <where>...): the text is a regular expression.
function(expect pattern)
    if(NOT "${ARGN}" MATCHES "${pattern}")
        message(FATAL_ERROR "no ${pattern} in:\n${ARGN}")
    endif()
endfunction()

# An uninstall takes away what an installation brought, and nothing else.
file(WRITE "${FOLDER}/installed/lib/of-the-user" "")
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${FOLDER}/installed")
run("${CMAKE_COMMAND}" --build "${BUILD}" --target uninstall)
file(GLOB_RECURSE left LIST_DIRECTORIES TRUE RELATIVE "${FOLDER}" "${FOLDER}/installed/*")
if(NOT left STREQUAL "installed/lib;installed/lib/of-the-user")
    message(FATAL_ERROR "uninstalling leaves ${left}")
endif()
file(REMOVE_RECURSE "${FOLDER}/installed")

run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${FOLDER}/installed")
file(RENAME "${FOLDER}/installed" "${FOLDER}/moved")
foreach(standard IN ITEMS 20 17)
    run("${CMAKE_COMMAND}" -S "${SOURCE}/examples/host" -B "${FOLDER}/build" -G "${GENERATOR}"
        "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}" "-DCMAKE_CXX_COMPILER=${COMPILER}"
        "-DCMAKE_PREFIX_PATH=${FOLDER}/moved" -DCMAKE_CXX_STANDARD=${standard}
    )
    run("${CMAKE_COMMAND}" --build "${FOLDER}/build")
endforeach()

execute_process(
    COMMAND "${FOLDER}/build/host" "${FOLDER}/out" "${SOURCE}/samples/textures"
    OUTPUT_VARIABLE output
    ERROR_VARIABLE messages COMMAND_ERROR_IS_FATAL ANY
)
expect("RedPaint.mtlx\n.*Steel.mtlx\n.*Oak.mtlx\n1 failed" "${output}")
expect("^warning \\[property-unread\\] metal-1: generic_glosiness: [^\n]+\nerror \\[property-type\\] broken-1: [^\n]+\n$"
       "${messages}"
)
file(READ "${FOLDER}/out/RedPaint.mtlx" paint)
expect("name=\"base_color\" type=\"color3\" value=\"0.5, 0.25, 0.125\"" "${paint}")
file(READ "${FOLDER}/out/Oak.mtlx" oak)
expect("value=\"[^\"]*/samples/textures/oak_color.jpg\"" "${oak}")

# The tool finds libraries, bakes and definitions in the moved folder.
file(GLOB_RECURSE programs "${FOLDER}/moved/bin/*" "${FOLDER}/moved/lib/*.so*")
foreach(program IN LISTS programs)
    execute_process(COMMAND readelf -d "${program}" OUTPUT_VARIABLE needs ERROR_QUIET)
    if(needs MATCHES "R(UN)?PATH[^\n]*[[:]/[^\n]*")
        message(FATAL_ERROR "${program} looks for libraries elsewhere: ${CMAKE_MATCH_0}")
    endif()
endforeach()
if(EXISTS "${FOLDER}/moved/bin/vyr-mtlx")
    run("${CMAKE_COMMAND}" -E env --unset=LD_LIBRARY_PATH "${FOLDER}/moved/bin/vyr-mtlx" convert
        "${SOURCE}/samples/hardwood.json" --output "${FOLDER}/converted" --image-size 16 --validate
    )
endif()
