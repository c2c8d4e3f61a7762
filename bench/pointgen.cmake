# Point generation and save of a 1200-place pallet, through the embedded controller.
if(TARGET tpallet_obj AND TARGET rccore)
    tpallet_add_bench(bench_pointgen SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/bench_pointgen.cpp
                      LIBS tpallet_obj rccore orbaCore orbat tcore Qt5::Widgets Qt5::Core)
endif()
