# Loading 100 full pallets at connection through both load protocols, embedded and over TCP.
if(TARGET tpallet_obj AND TARGET rccore AND TARGET rcsim)
    tpallet_add_bench(bench_connectload SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_connectload.cpp
                              ${PROJECT_SOURCE_DIR}/pendant/hugeheap.cpp
                      LIBS tpallet_obj rccore orbaCore orbat tcore Qt5::Widgets Qt5::Core)
    target_compile_definitions(bench_connectload PRIVATE RCSIM_BIN="$<TARGET_FILE:rcsim>")
    target_include_directories(bench_connectload PRIVATE ${PROJECT_SOURCE_DIR}/pendant)
    add_dependencies(bench_connectload rcsim)
endif()
