# Tests of a cross build run through TPALLET_TEST_EMULATOR: CMAKE_CROSSCOMPILING_EMULATOR (qemu-user,
# set by toolchain-aarch64.cmake) plus what the tests need under it. Tests start other programs of
# the build (rcsim, the picture generator) with QProcess; qemu-user before 8.0 (Debian 12 has 7.2)
# refuses the clone flag QProcess uses for that, so a preloaded shim (tools/qemu_pidfd_shim.cpp)
# makes QProcess fork the classic way. The started aarch64 programs run through binfmt_misc
# (tools/dev.sh cross registers qemu there when nothing did).
set(TPALLET_TEST_EMULATOR ${CMAKE_CROSSCOMPILING_EMULATOR})
if(CMAKE_CROSSCOMPILING AND CMAKE_CROSSCOMPILING_EMULATOR MATCHES "qemu")
    add_library(qemu_pidfd_shim SHARED ${CMAKE_CURRENT_LIST_DIR}/../tools/qemu_pidfd_shim.cpp)
    target_link_libraries(qemu_pidfd_shim PRIVATE ${CMAKE_DL_LIBS})
    list(APPEND TPALLET_TEST_EMULATOR -E LD_PRELOAD=$<TARGET_FILE:qemu_pidfd_shim>)
endif()
