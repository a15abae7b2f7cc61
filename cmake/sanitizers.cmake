# Sanitizers apply to everything, so that module, host and tests agree on their runtime.
if(VS_PFS_SANITIZE)
    add_compile_options(-fsanitize=${VS_PFS_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VS_PFS_SANITIZE})
endif()
