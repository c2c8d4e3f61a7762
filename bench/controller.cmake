if(TARGET rccore)
    tpallet_add_bench(bench_controller SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_controller.cpp LIBS rccore orbaCore Qt5::Core)
endif()
