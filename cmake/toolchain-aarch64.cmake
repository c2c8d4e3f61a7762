# Cross build for the pendant's AArch64 CPU with Debian multiarch (bash tools/dev.sh cross does
# all of this, tests under qemu included):
#   dpkg --add-architecture arm64 && apt-get update
#   apt-get install crossbuild-essential-arm64 qtbase5-dev:arm64 libqt5sql5-sqlite:arm64 \
#                   libeigen3-dev qttools5-dev qemu-user-static
#   cmake -S . -B build-aarch64 -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64.cmake
# The arm64 libraries and CMake packages live beside the build machine's in /usr/lib/aarch64-linux-gnu
# (CMAKE_LIBRARY_ARCHITECTURE makes CMake search there); the compiler's own sysroot is
# /usr/aarch64-linux-gnu. moc, uic, rcc, lrelease and lupdate run on the build machine: the arm64
# Qt packages name the build machine's tools under /usr/lib/qt5/bin, and the linguist tools'
# CMake package (which has no arm64 build) is the build machine's.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

# Programs (the Qt tools) come from the build machine; libraries, headers and packages never do.
set(CMAKE_FIND_ROOT_PATH /usr/aarch64-linux-gnu /)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_IGNORE_PATH /usr/lib/x86_64-linux-gnu /lib/x86_64-linux-gnu /usr/include/x86_64-linux-gnu)

set(Qt5_DIR /usr/lib/aarch64-linux-gnu/cmake/Qt5 CACHE PATH "")
set(Qt5LinguistTools_DIR /usr/lib/x86_64-linux-gnu/cmake/Qt5LinguistTools CACHE PATH "")

# Tests run under user-mode emulation; the arm64 loader and libraries are the multiarch ones
# (/lib/ld-linux-aarch64.so.1 from libc6:arm64), so no QEMU_LD_PREFIX is needed.
find_program(TPALLET_QEMU_AARCH64 NAMES qemu-aarch64-static qemu-aarch64)
if(TPALLET_QEMU_AARCH64)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${TPALLET_QEMU_AARCH64})
endif()
