# Debian packages, one per install component (see TpalletInstall.cmake for the layout):
#   libtpallet-host1     host       the host SDK's shared libraries
#   libtpallet-host-dev  hostdev    its headers, link symlinks and the CMake package TpalletHost
#   tpallet              module     libtpallet.so.1 in the shell's module directory
#   tpendant             shell      the shell tpendant and the controller simulator rcsim
# Configure with -DCMAKE_INSTALL_PREFIX=/usr, build, then `cpack -G DEB` in the build directory
# (bash tools/dev.sh package does all of it). dpkg-shlibdeps adds the ELF dependencies (Qt, libc,
# libstdc++); what the loader cannot see is listed here: the controller's SQLite driver is a Qt
# plugin, and the host SDK's dependency between the packages is exact, as they are built together.
set(CPACK_PACKAGE_NAME tpallet)
set(CPACK_PACKAGE_VENDOR "tpallet")
set(CPACK_PACKAGE_CONTACT "tpallet maintainers <tpallet@localhost>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL host hostdev module shell)
set(CPACK_DEB_COMPONENT_INSTALL ON)

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The host libraries of this build satisfy the module's and the shell's links; the package
# dependency on them is written below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)

set(tpallet_host_dep "libtpallet-host1 (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_HOST_PACKAGE_NAME libtpallet-host1)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_HOST_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_HOST_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_COMPONENT_HOST_DESCRIPTION "teach pendant host SDK, runtime libraries
liborbaCore (object tree, module manager, registries, logs, XML and JSON), liborbaDwel (modules,
factory, page container), liborbat (controller command service and its transports) and libtcore
(pages, message boxes, settings, theme, widgets, frame arithmetic).")

set(CPACK_DEBIAN_HOSTDEV_PACKAGE_NAME libtpallet-host-dev)
set(CPACK_DEBIAN_HOSTDEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_HOSTDEV_PACKAGE_DEPENDS "${tpallet_host_dep}, qtbase5-dev (>= 5.15)")
set(CPACK_COMPONENT_HOSTDEV_DESCRIPTION "teach pendant host SDK, development files
Headers, link symlinks and the CMake package TpalletHost (find_package(TpalletHost), targets
host::orbaCore, host::orbaDwel, host::orbat, host::tcore) for building pendant modules.")

set(CPACK_DEBIAN_MODULE_PACKAGE_NAME tpallet)
set(CPACK_DEBIAN_MODULE_PACKAGE_DEPENDS "${tpallet_host_dep}")
set(CPACK_DEBIAN_MODULE_PACKAGE_RECOMMENDS "tpendant (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_MODULE_PACKAGE_ENHANCES "tpendant")
set(CPACK_COMPONENT_MODULE_DESCRIPTION "palletizing module of the teach pendant
libtpallet.so.1, loaded by the pendant under the key tpallet. It defines pallets, calibrates
their frame, computes every place's poses, checks the paths on the robot controller and moves
the robot to any point.")

set(CPACK_DEBIAN_SHELL_PACKAGE_NAME tpendant)
set(CPACK_DEBIAN_SHELL_PACKAGE_DEPENDS "${tpallet_host_dep}, libqt5sql5-sqlite")
# The on-screen keyboard (Qt's virtual keyboard in Qt Quick), Qt's own translations and the CJK
# fonts are used when installed.
set(CPACK_DEBIAN_SHELL_PACKAGE_RECOMMENDS "tpallet (= ${PROJECT_VERSION}), fonts-noto-cjk | fonts-wqy-microhei, \
qttranslations5-l10n, qtvirtualkeyboard-plugin, qml-module-qtquick2, qml-module-qtquick-window2, \
qml-module-qtquick-layouts, qml-module-qt-labs-folderlistmodel")
set(CPACK_COMPONENT_SHELL_DESCRIPTION "teach pendant shell and robot controller simulator
tpendant loads the pendant modules found in its module directory and shows their pages in a
touch-style window, with a simulated robot controller inside or over TCP. rcsim is that
controller simulator as a TCP server.")

include(CPack)
