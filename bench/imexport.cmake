# Export then import of 20 full pallets through the exchange dialog, on the embedded controller.
if(TARGET tpallet_obj AND TARGET rccore)
    tpallet_add_bench(bench_imexport SOURCES ${CMAKE_CURRENT_LIST_DIR}/bench_imexport.cpp
                              ${PROJECT_SOURCE_DIR}/pendant/hugeheap.cpp
                      LIBS tpallet_obj rccore orbaCore orbat tcore Qt5::Widgets Qt5::Core)
    target_include_directories(bench_imexport PRIVATE ${PROJECT_SOURCE_DIR}/pendant)
endif()
