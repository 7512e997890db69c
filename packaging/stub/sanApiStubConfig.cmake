# find_package(sanApiStub) gives the target san::apiStub.
include(CMakeFindDependencyMacro)
find_dependency(Protobuf)
find_dependency(EXPAT)
include("${CMAKE_CURRENT_LIST_DIR}/sanApiStubTargets.cmake")
