include(TpalletCross)

# tpallet_add_test(<name> SOURCES <files...> LIBS <targets...> [GUI] [TIMEOUT <s>] [LABELS <l...>])
# One QtTest executable, registered with ctest. Every test runs on the offscreen platform, in a
# fresh working directory of its own (file logs and data land there), with a fresh HOME; a cross
# build runs it through TPALLET_TEST_EMULATOR (TpalletCross.cmake).
function(tpallet_add_test name)
    cmake_parse_arguments(T "GUI" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE Qt5::Test ${T_LIBS})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    set(workdir ${CMAKE_BINARY_DIR}/testrun/${name})
    add_test(NAME ${name}
             COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen HOME=${workdir}/home
                     XDG_RUNTIME_DIR=${workdir}/run
                     ${TPALLET_TEST_EMULATOR} $<TARGET_FILE:${name}> -maxwarnings 0)
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 300)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT} WORKING_DIRECTORY ${workdir})
    if(T_LABELS)
        set_tests_properties(${name} PROPERTIES LABELS "${T_LABELS}")
    endif()
    file(MAKE_DIRECTORY ${workdir}/home ${workdir}/run)
endfunction()

# tpallet_add_bench(<name> SOURCES <files...> LIBS <targets...>)
function(tpallet_add_bench name)
    cmake_parse_arguments(B "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${B_SOURCES})
    target_link_libraries(${name} PRIVATE ${B_LIBS})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()

# host_add_library(<target> SOURCES <files...> [PUBLIC <libs...>] [PRIVATE <libs...>])
# A host SDK shared library lib<target>.so.1 with the public headers of host/include.
function(host_add_library target)
    cmake_parse_arguments(H "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${target} SHARED ${H_SOURCES})
    add_library(host::${target} ALIAS ${target})
    set_target_properties(${target} PROPERTIES VERSION ${HOST_VERSION} SOVERSION ${HOST_SOVERSION}
                                               EXPORT_NAME ${target})
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${HOST_INCLUDE_DIR}>
                                                $<INSTALL_INTERFACE:${TPALLET_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${target} PUBLIC ${H_PUBLIC} PRIVATE ${H_PRIVATE})
    tpallet_install_rpath(${target} ${CMAKE_INSTALL_LIBDIR})
    install(TARGETS ${target} EXPORT TpalletHostTargets
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT host NAMELINK_COMPONENT hostdev)
endfunction()
