# rcsim's answer time to a well-behaved client beside misbehaving ones, on loopback.
if(TARGET orbaCore AND TARGET rcsim)
    tpallet_add_bench(bench_rcsimlatency SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_rcsimlatency.cpp
                      LIBS orbaCore Qt5::Network Qt5::Core)
    target_compile_definitions(bench_rcsimlatency PRIVATE RCSIM_BIN="$<TARGET_FILE:rcsim>")
    add_dependencies(bench_rcsimlatency rcsim)
endif()
