# vyr_add_test(<name> SOURCES <file>... [MODULES <module>...] [LIBRARIES <target>...] [TIMEOUT <seconds>])
#
# A GoogleTest program test_<name>, with one ctest entry for each of its suites: a process for each single
# case would spend its time starting. MODULES names internal modules (src/<module>), which are linked in
# with all below them; LIBRARIES everything else, such as vyr::mtlx_converter. A test's file looks
# like this:
#
#     vyr_add_test(
#         graph
#         SOURCES NamesTest.cpp ValuesTest.cpp
#         MODULES graph
#         LIBRARIES MaterialXFormat
#     )
#
# Never link modules and vyr::mtlx_converter together: everything would be there twice.
function(vyr_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "SOURCES;MODULES;LIBRARIES")
    file(GLOB tests CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" *Test.cpp)
    list(REMOVE_ITEM tests ${arg_SOURCES})
    if(tests)
        message(FATAL_ERROR "no program has the tests ${tests} of ${CMAKE_CURRENT_SOURCE_DIR}")
    endif()
    vyr_add_program(test_${name} "${arg_SOURCES}" "${arg_MODULES}")
    target_link_libraries(test_${name} PRIVATE ${arg_LIBRARIES} GTest::gtest_main)
    if(NOT MSVC)
        # It is the tested code that has to be fast; optimising the tests is a third to half of their build.
        if(VYR_SANITIZE)
            target_compile_options(test_${name} PRIVATE -O0)
        else()
            target_compile_options(test_${name} PRIVATE $<$<CONFIG:Release>:-O1>)
        endif()
    endif()

    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    set(suites "${CMAKE_CURRENT_BINARY_DIR}/test_${name}.suites.cmake")
    add_custom_command(
        TARGET test_${name}
        POST_BUILD
        COMMAND
            "${CMAKE_COMMAND}" -D NAME=${name} -D "PROGRAM=$<TARGET_FILE:test_${name}>" -D
            "OUTPUT=${suites}" -D TIMEOUT=${arg_TIMEOUT} -P
            "${PROJECT_SOURCE_DIR}/cmake/VyrDiscoverSuites.cmake"
        BYPRODUCTS "${suites}"
        VERBATIM
    )
    file(
        CONFIGURE
        OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/test_${name}.cmake"
        CONTENT
            [[
if(EXISTS "@suites@")
    include("@suites@")
else()
    add_test(@name@_NOT_BUILT "@name@_NOT_BUILT")
endif()
]]
        @ONLY
    )
    set_property(
        DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${CMAKE_CURRENT_BINARY_DIR}/test_${name}.cmake"
    )
endfunction()

# vyr_add_benchmark(<name> SOURCES <file>... [MODULES <module>...] [LIBRARIES <target>...]
#                   [SMOKE <regular expression>])
#
# A Google Benchmark program bench_<name>, which scripts/bench runs. As a test it only runs, once and
# shortly, the benchmarks whose names match SMOKE (all, when it is not given): what is measured there means
# nothing.
function(vyr_add_benchmark name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "SMOKE" "SOURCES;MODULES;LIBRARIES")
    vyr_add_program(bench_${name} "${arg_SOURCES}" "${arg_MODULES}")
    target_link_libraries(bench_${name} PRIVATE ${arg_LIBRARIES} benchmark::benchmark_main)
    if(VYR_BUILD_TESTS)
        if(NOT arg_SMOKE)
            set(arg_SMOKE ".*")
        endif()
        add_test(
            NAME bench.${name}
            COMMAND
                bench_${name} --benchmark_min_time=0.001 --benchmark_filter=${arg_SMOKE}
        )
        set_tests_properties(bench.${name} PROPERTIES TIMEOUT 300)
    endif()
endfunction()

# What tests and benchmarks have in common. Both may read the checkout and MaterialX's data library.
function(vyr_add_program target sources modules)
    add_executable(${target} ${sources})
    vyr_target_defaults(${target})
    set_target_properties(
        ${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests"
    )
    target_compile_definitions(
        ${target}
        PRIVATE
            VYR_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
            VYR_BINARY_DIR="${PROJECT_BINARY_DIR}"
    )
    target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    if(modules)
        target_compile_definitions(${target} PRIVATE VYR_MTLX_BUILDING)
        vyr_link_modules(${target} ${modules})
    endif()
endfunction()
