# Install layout, the Debian one when the prefix is /usr:
#   <prefix>/bin                                 tpendant, rcsim
#   <prefix>/<libdir>                            liborbaCore.so.1, liborbaDwel.so.1, liborbat.so.1, libtcore.so.1
#   <prefix>/<libdir>/tpendant/modules           libtpallet.so.1 (the shell's module directory)
#   <prefix>/<libdir>/cmake/TpalletHost          the exported CMake package of the host SDK
#   <prefix>/<includedir>/tpallet-host           the host SDK headers
# <libdir> is lib/<multiarch> for /usr (GNUInstallDirs), lib elsewhere.
# Install components, one Debian package each: host, hostdev, module, shell.
# GNUInstallDirs picks lib/<multiarch> for /usr only in native builds; a cross build for Debian
# (the toolchain file names the multiarch) gets the same layout as a native one.
if(CMAKE_CROSSCOMPILING AND CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
    if(CMAKE_INSTALL_PREFIX MATCHES "^/usr/?$"
       AND (NOT CMAKE_INSTALL_LIBDIR OR CMAKE_INSTALL_LIBDIR STREQUAL "lib"))
        set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Object code libraries" FORCE)
    elseif(NOT CMAKE_INSTALL_PREFIX MATCHES "^/usr/?$"
           AND CMAKE_INSTALL_LIBDIR STREQUAL "lib/${CMAKE_LIBRARY_ARCHITECTURE}")
        set(CMAKE_INSTALL_LIBDIR lib CACHE PATH "Object code libraries" FORCE)
    endif()
endif()
include(GNUInstallDirs)

set(TPALLET_INSTALL_MODULEDIR ${CMAKE_INSTALL_LIBDIR}/tpendant/modules)
set(TPALLET_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/TpalletHost)
set(TPALLET_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/tpallet-host)

# The installed tpendant finds its modules relative to its own directory, so an installed tree
# can be moved (DESTDIR staging, another prefix) and still works.
file(RELATIVE_PATH TPALLET_BIN_TO_MODULEDIR ${CMAKE_INSTALL_FULL_BINDIR}
     ${CMAKE_INSTALL_PREFIX}/${TPALLET_INSTALL_MODULEDIR})

# Whether the loader searches the installed library directory by itself (Debian's /usr).
set(TPALLET_INSTALL_LIBDIR_IS_SYSTEM OFF)
if("${CMAKE_INSTALL_FULL_LIBDIR}" IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES OR
   "${CMAKE_INSTALL_FULL_LIBDIR}" IN_LIST CMAKE_PLATFORM_IMPLICIT_LINK_DIRECTORIES)
    set(TPALLET_INSTALL_LIBDIR_IS_SYSTEM ON)
endif()

# tpallet_install_rpath(<target> <install dir of the target>)
# Under a prefix whose library directory the loader does not search by itself, the installed
# binary finds the host libraries through $ORIGIN; a system library directory gets no RPATH.
function(tpallet_install_rpath target dir)
    if(TPALLET_INSTALL_LIBDIR_IS_SYSTEM)
        return()
    endif()
    file(RELATIVE_PATH rel ${CMAKE_INSTALL_PREFIX}/${dir} ${CMAKE_INSTALL_FULL_LIBDIR})
    string(REGEX REPLACE "/$" "" rel "${rel}")
    if(rel STREQUAL "")
        set(rel .)
    endif()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${rel}")
endfunction()
