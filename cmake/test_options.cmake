# What is to be fast, and to be watched closely, are the libraries; the tests themselves are most
# of what is compiled. So builds whose compiler takes long can have tests compiled in another way
# than the rest.
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
