if(TARGET orbaCore)
    tpallet_add_bench(bench_tree SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/bench_tree.cpp LIBS orbaCore Qt5::Core)
endif()
