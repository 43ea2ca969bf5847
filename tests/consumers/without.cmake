# Builds and runs the examples, with qvnalu in their build, without exceptions and without run-time type information.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

set(flags -fno-exceptions -fno-rtti)
list(JOIN flags " " text)
configure(${SOURCE}/examples ${WORK}/build ${UNOPTIMISED} -DQVNALU_FROM=subdirectory "-DCMAKE_CXX_FLAGS=${text}")
run(${CMAKE_COMMAND} --build ${WORK}/build --parallel 2)
file(READ ${WORK}/build/compile_commands.json commands)
if(NOT commands MATCHES " ${text} [^\n]*QVNaluParserScan\\.cpp")
  message(FATAL_ERROR "the library was compiled without ${text}: ${commands}")
endif()
run_examples(${WORK}/build)

# Without exceptions, an allocation that fails ends the program.
file(GLOB_RECURSE libraries ${WORK}/build/qvnalu/libqvnalu.a)
file(GLOB_RECURSE core ${WORK}/build/qvnalu/libqvcore_standalone.a)
run(${COMPILER} -std=c++11 ${flags} -I${SOURCE}/modules/core -I${SOURCE}/modules/demuxer/low_level/common
  -o ${WORK}/out_of_memory ${SOURCE}/tests/consumers/out_of_memory.cpp ${libraries} ${core})
run(${WORK}/out_of_memory)
