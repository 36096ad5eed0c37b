# Installs a build into a folder, then configures, builds and runs the example of a host against what was installed.
# Arguments: SOURCE (the project's), BUILD, FOLDER, PREFIX_PATH, GENERATOR, MAKE_PROGRAM, COMPILER.

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

run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${FOLDER}/installed")
foreach(standard IN ITEMS 20 17)
    run("${CMAKE_COMMAND}" -S "${SOURCE}/examples/host" -B "${FOLDER}/build" -G "${GENERATOR}"
        "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}" "-DCMAKE_CXX_COMPILER=${COMPILER}"
        "-DCMAKE_PREFIX_PATH=${FOLDER}/installed\;${PREFIX_PATH}" -DCMAKE_CXX_STANDARD=${standard}
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
