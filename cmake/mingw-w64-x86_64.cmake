# Cross build for 64-bit Windows with Debian's mingw-w64 (the POSIX-thread
# flavour, whose libstdc++ has std::thread and std::mutex). Programs are
# linked statically so that they run on a bare Windows, or under Wine, with
# no compiler runtime beside them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(HIFX_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${HIFX_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${HIFX_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${HIFX_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${HIFX_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

# Tests and test discovery run the Windows programs under Wine when it is
# installed (Debian's wine64 keeps its loader out of PATH).
find_program(HIFX_WINE NAMES wine64 wine PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
if(HIFX_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${HIFX_WINE})
endif()
