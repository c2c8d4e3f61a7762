# Cross build for the pendant's AArch64 CPU with Debian multiarch:
#   dpkg --add-architecture arm64 && apt-get update
#   apt-get install g++-aarch64-linux-gnu qtbase5-dev:arm64 libqt5sql5-sqlite:arm64 libeigen3-dev
#   cmake -S . -B build-arm64 -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64.cmake \
#         -DTPALLET_BUILD_TESTS=OFF -DTPALLET_BUILD_BENCH=OFF
# moc, uic, rcc and lrelease run on the build machine, so the host's Qt tools are used.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH /usr/lib/aarch64-linux-gnu /usr)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

set(Qt5_DIR /usr/lib/aarch64-linux-gnu/cmake/Qt5 CACHE PATH "")
foreach(tool moc uic rcc)
    set(Qt5Core_${tool}_EXECUTABLE /usr/lib/qt5/bin/${tool})
endforeach()
set(QT_MOC_EXECUTABLE /usr/lib/qt5/bin/moc)
