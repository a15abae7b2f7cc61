# The libraries have to be fast and closely checked; the tests are most of the code to compile. So
# builds with a slow compiler can compile the tests with other options than the rest.
set(VS_PFS_TEST_OPTIONS "" CACHE STRING "Options that tests alone are compiled with, such as -O0")

# Most of the time that a test file takes to compile goes into the headers it shares with the
# others. Builds with this on find no missing include; the others do.
option(VS_PFS_UNITY_TESTS "Compile several test files at once" OFF)
set(files_at_once 12)

# Every program that a test runs in its own process.
add_custom_target(test_programs)

# vs_pfs_tests(TARGET [SHARDS count] [TIMEOUT seconds] [COST cost] [ALONE file...]): builds the
# test program TARGET as tests are built, and makes it a test: TARGET, or TARGET.1 and so on,
# which share its cases. Those of the highest cost are started first. Without any case it fails.
# Files whose own short names stand in others too are compiled ALONE.
function(vs_pfs_tests target)
    cmake_parse_arguments(PARSE_ARGV 1 tests "" "SHARDS;TIMEOUT;COST" "ALONE")
    vs_pfs_warnings(${target})
    add_dependencies(test_programs ${target})
    target_compile_options(${target} PRIVATE ${VS_PFS_TEST_OPTIONS})
    if(VS_PFS_UNITY_TESTS)
        set_target_properties(${target} PROPERTIES
            UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${files_at_once})
        set_source_files_properties(${tests_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
        # Every file of a unit but the unit itself counts as a header, in which that would matter.
        target_compile_options(${target} PRIVATE
            $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
    endif()
    set(properties TIMEOUT 900 COST 1)
    foreach(property TIMEOUT COST)
        if(DEFINED tests_${property})
            list(APPEND properties ${property} ${tests_${property}})
        endif()
    endforeach()
    if(NOT DEFINED tests_SHARDS)
        set(tests_SHARDS 1)
    endif()
    foreach(shard RANGE 1 ${tests_SHARDS})
        set(name ${target})
        if(tests_SHARDS GREATER 1)
            string(APPEND name .${shard})
        endif()
        math(EXPR index "${shard} - 1")
        add_test(NAME ${name} COMMAND ${target})
        set_tests_properties(${name} PROPERTIES ${properties}
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${tests_SHARDS};GTEST_SHARD_INDEX=${index}"
            FAIL_REGULAR_EXPRESSION "\\[  PASSED  \\] 0 tests")
    endforeach()
endfunction()
