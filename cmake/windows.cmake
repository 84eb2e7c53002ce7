# SPDX-License-Identifier: BSD-3-Clause
# Builds for 64-bit Windows with mingw-w64, in the flavour whose standard library has threads,
# and runs what was built, tests included, under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

# The linker would write the time into each file, and no two builds were the same.
foreach(kind EXE MODULE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT -Wl,--no-insert-timestamp)
endforeach()

# Libraries built for the target that no package brings, installed below one folder.
set(LX_TARGET_PREFIX "" CACHE PATH "Where libraries for the target system are installed")
set(CMAKE_FIND_ROOT_PATH /usr/${triple} ${LX_TARGET_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${LX_TARGET_PREFIX}/lib/pkgconfig)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LX_TARGET_PREFIX)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine.sh)

# Beside the static library stands one that asks for a DLL of zlib.
set(ZLIB_USE_STATIC_LIBS ON)
