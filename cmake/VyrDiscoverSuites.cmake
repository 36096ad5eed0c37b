# Run after a test program was linked: writes one add_test for each of its GoogleTest suites.
# Arguments: NAME, PROGRAM, OUTPUT, TIMEOUT.

execute_process(
    COMMAND "${PROGRAM}" --gtest_list_tests
    OUTPUT_VARIABLE listing
    ERROR_VARIABLE errors
    RESULT_VARIABLE status
)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} cannot list its tests (${status}):\n${listing}${errors}")
endif()

# A suite stands at the start of a line and ends in a dot, perhaps with a comment; cases are indented.
string(REGEX MATCHALL "(^|\n)[A-Za-z0-9_/]+\\." suites "${listing}")
if(NOT suites)
    message(FATAL_ERROR "${PROGRAM} has no tests")
endif()

set(script "")
foreach(suite IN LISTS suites)
    string(STRIP "${suite}" suite)
    string(APPEND script "add_test([==[${NAME}.${suite}]==] [==[${PROGRAM}]==] [==[--gtest_filter=${suite}*]==])\n")
    string(APPEND script "set_tests_properties([==[${NAME}.${suite}]==] PROPERTIES TIMEOUT ${TIMEOUT})\n")
endforeach()
string(REGEX REPLACE "\\.\\]==\\]" "]==]" script "${script}")
file(WRITE "${OUTPUT}" "${script}")
