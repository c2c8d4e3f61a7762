# The point check of a 1200-place pallet through the module on the embedded controller, against
# the controller's own check rate.
if(TARGET tpallet_obj AND TARGET rccore)
    tpallet_add_bench(bench_pointcheck SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/bench_pointcheck.cpp
                      LIBS tpallet_obj rccore orbaCore orbat tcore Qt5::Widgets Qt5::Core)
endif()
