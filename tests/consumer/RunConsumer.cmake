# Installs a build into a folder, then configures, builds and runs the consumer against what was installed.
# Arguments: SOURCE, BUILD, FOLDER, PREFIX_PATH, GENERATOR, MAKE_PROGRAM, COMPILER.

file(REMOVE_RECURSE "${FOLDER}")

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${FOLDER}/installed")
run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${FOLDER}/build" -G "${GENERATOR}"
    "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}" "-DCMAKE_CXX_COMPILER=${COMPILER}"
    "-DCMAKE_PREFIX_PATH=${FOLDER}/installed\;${PREFIX_PATH}"
)
run("${CMAKE_COMMAND}" --build "${FOLDER}/build")
run("${FOLDER}/build/consumer")
