# CMake package of libtevbase: find_package(tevbase) gives the target tevbase::tevbase.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/tevbaseTargets.cmake)
