# Builds for 64-bit Windows with Debian's mingw-w64, and runs what was built with Wine.
#
#     cmake --toolchain cmake/MingwW64.cmake ...        the preset `windows` does
#
# The flavour with POSIX threads, for the C++ standard library's threads are missing from the other one.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)

# Programs of the machine that builds, everything else of the one that is built for, and of what a project adds with
# -D CMAKE_FIND_ROOT_PATH=...
list(APPEND CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The compiler's run-time libraries become part of each program and DLL, which then need nothing but the system. The
# threads' library has no option of its own, and the linker meets it too late to be told otherwise there.
set(static_runtime "-static-libgcc -static-libstdc++")
string(APPEND static_runtime " -Wl,-Bstatic,--whole-archive,-lwinpthread,--no-whole-archive,-Bdynamic")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${static_runtime}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${static_runtime}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${static_runtime}")

# Windows of its own for each build folder. (A toolchain file is also read by CMake's trial builds, which run nothing.)
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${CMAKE_CURRENT_LIST_DIR}/../tools/with-wine ${CMAKE_BINARY_DIR}/wine)
