# Builds and runs the examples with the library of one KIND that is installed at PREFIX, found by find_package; then the
# program with prefixed headers.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

write_readme_program(${WORK}/readme.cpp)
configure(${SOURCE}/examples ${WORK}/build
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH=${PREFIX} -DUNITS_SOURCE=${WORK}/readme.cpp)
run(${CMAKE_COMMAND} --build ${WORK}/build)
foreach(program units timing player)
  expect_kind(${KIND} qvnalu ${WORK}/build/${program})
endforeach()
expect_kind(${KIND} qvbitstream ${WORK}/build/parameter_sets)
run_examples(${WORK}/build)

write_prefixed_program(${WORK}/prefixed.cpp)
configure(${SOURCE}/examples ${WORK}/build -DUNITS_SOURCE=${WORK}/prefixed.cpp)
run(${CMAKE_COMMAND} --build ${WORK}/build --target units)
expect_output(units.txt ${WORK}/build/units ${SOURCE}/samples/hevc_hdr10.h265)
