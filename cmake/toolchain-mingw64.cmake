# Cross build for Windows x64 with MinGW-w64 GCC (POSIX thread model).
# Module authors use this same file for their own builds.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KR_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   ${KR_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KR_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER  ${KR_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KR_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# No MinGW runtime DLL beside the binaries: libgcc, libstdc++ and winpthread go in statically.
set(CMAKE_EXE_LINKER_FLAGS_INIT    "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# Executables built for Windows run on this Linux machine through Wine.
find_program(KR_WINE wine)
if(KR_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh)
endif()
