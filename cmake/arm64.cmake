# SPDX-License-Identifier: BSD-3-Clause
# Builds for Linux on arm64 with Debian's cross compiler and its libraries of that architecture, which lie
# beside the machine's own. scripts/arm64.sh knows their packages.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(triple aarch64-linux-gnu)
set(CMAKE_C_COMPILER ${triple}-gcc)
set(CMAKE_CXX_COMPILER ${triple}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triple})

# What the machine's own libraries say is of no use here.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${triple}/pkgconfig:/usr/share/pkgconfig)

# Qt's compilers are programs of the machine; what tells where they are comes with the libraries.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/${triple}/cmake)

# What was built runs under an emulator. A machine that starts such programs by itself has none to name.
find_program(LX_ARM64_EMULATOR qemu-aarch64-static)
mark_as_advanced(LX_ARM64_EMULATOR)
if(LX_ARM64_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${LX_ARM64_EMULATOR})
endif()
