# vs_pfs_warnings(TARGET): the warnings that every target of the project is built with.
function(vs_pfs_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
        $<$<BOOL:${VS_PFS_WERROR}>:-Werror>)
endfunction()
