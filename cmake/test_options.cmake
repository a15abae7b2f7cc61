# The libraries have to be fast and closely checked; the tests are most of the code to compile. So
# builds with a slow compiler can compile the tests with other options than the rest.
set(VS_PFS_TEST_OPTIONS "" CACHE STRING "Options that tests alone are compiled with, such as -O0")

# vs_pfs_test_options(DIRECTORY): for all test programs in it and below it.
function(vs_pfs_test_options directory)
    get_property(targets DIRECTORY ${directory} PROPERTY BUILDSYSTEM_TARGETS)
    list(FILTER targets INCLUDE REGEX "_tests$")
    foreach(target ${targets})
        target_compile_options(${target} PRIVATE ${VS_PFS_TEST_OPTIONS})
    endforeach()
    get_property(subdirectories DIRECTORY ${directory} PROPERTY SUBDIRECTORIES)
    foreach(subdirectory ${subdirectories})
        vs_pfs_test_options(${subdirectory})
    endforeach()
endfunction()
