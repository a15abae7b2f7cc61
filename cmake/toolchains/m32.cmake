# 32-bit x86 on a 64-bit machine: g++-12-multilib. Its headers lack the link to asm/ that the
# unversioned package provides, which conflicts with cross compilers.
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT "-m32 -idirafter /usr/include/x86_64-linux-gnu")
set(CMAKE_CXX_FLAGS_INIT "-m32 -idirafter /usr/include/x86_64-linux-gnu")
