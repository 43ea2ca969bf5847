# Builds and runs the examples on the library of one KIND that is installed at PREFIX, found by find_package.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

write_readme_program(${WORK}/readme.cpp)
configure(${SOURCE}/examples ${WORK}/build
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH=${PREFIX} -DUNITS_SOURCE=${WORK}/readme.cpp)
run(${CMAKE_COMMAND} --build ${WORK}/build)
foreach(program units player)
  expect_kind(${KIND} ${WORK}/build/${program})
endforeach()
run_examples(${WORK}/build)
