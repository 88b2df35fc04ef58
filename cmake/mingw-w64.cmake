# Cross build for Windows with Debian's MinGW-w64 (posix threads variant).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# The C and C++ run-times (libgcc, libstdc++, winpthread) are linked in statically, so every
# executable and DLL runs on its own: nothing of MinGW has to be copied beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Test executables run under Wine (ctest, and test discovery at test time).
if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
  find_program(PELICOR_WINE wine)
  if(PELICOR_WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${PELICOR_WINE}")
  endif()
endif()
