# vs_pfs_launcher(TARGET VARIABLE): sets VARIABLE to the path by which to start the program TARGET:
# the program itself, or when cross-compiling a script that runs it in the emulator. For tests
# that start it by its path.
function(vs_pfs_launcher target variable)
    if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
        set(${variable} "$<TARGET_FILE:${target}>" PARENT_SCOPE)
        return()
    endif()
    set(script ${PROJECT_BINARY_DIR}/bin/${target}.sh)
    set(${variable} ${script} PARENT_SCOPE)
    # CMake refuses to generate a file that another folder generates too.
    get_property(is_generated GLOBAL PROPERTY vs_pfs_launcher_of_${target})
    if(is_generated)
        return()
    endif()
    set_property(GLOBAL PROPERTY vs_pfs_launcher_of_${target} TRUE)
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
    file(GENERATE OUTPUT ${script}
        CONTENT "#!/bin/sh\nexec ${emulator} '$<TARGET_FILE:${target}>' \"$@\"\n"
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endfunction()
