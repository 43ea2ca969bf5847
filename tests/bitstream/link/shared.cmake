# Builds both libraries as shared ones, and programs that load one of them or both, in either order.
include(${CMAKE_CURRENT_LIST_DIR}/../../consumers/common.cmake)

configure(${SOURCE} ${WORK} ${UNOPTIMISED}
  -DBUILD_SHARED_LIBS=ON -DQVNALU_BUILD_TESTS=OFF -DQVNALU_BUILD_TOOLS=OFF -DQVNALU_BUILD_FUZZERS=OFF)
run(${CMAKE_COMMAND} --build ${WORK} --parallel 2 --target qvnalu qvbitstream qvsps_completion qvcore_standalone)

set(modules ${SOURCE}/modules)
set(nalu ${WORK}/modules/demuxer/low_level/common)
set(bitstream ${WORK}/modules/bitstream)
set(core ${WORK}/modules/core/standalone/libqvcore_standalone.a)
set(completion ${WORK}/modules/demuxer/low_level/completion/libqvsps_completion.a)
set(includes -I${modules} -I${modules}/core -I${modules}/demuxer/low_level/common
  -I${modules}/demuxer/low_level/completion)

# run_program(NAME FLAG...)
function(run_program name)
  run(${COMPILER} -std=c++17 ${includes} ${SOURCE}/tests/bitstream/link/program.cpp ${ARGN} -o ${WORK}/${name})
  run(${WORK}/${name})
endfunction()

set(link_nalu -L${nalu} -Wl,-rpath,${nalu} -lqvnalu)
set(link_bitstream -L${bitstream} -Wl,-rpath,${bitstream} -lqvbitstream)
run_program(nalu -DWITH_NALU ${link_nalu} ${core})
run_program(bitstream -DWITH_BITSTREAM ${link_bitstream})
run_program(nalu_bitstream -DWITH_NALU -DWITH_BITSTREAM ${link_nalu} ${link_bitstream} ${core})
run_program(bitstream_nalu -DWITH_NALU -DWITH_BITSTREAM ${link_bitstream} ${link_nalu} ${core})
run_program(completion -DWITH_NALU -DWITH_BITSTREAM -DWITH_COMPLETION
  ${completion} ${link_nalu} ${link_bitstream} ${core})
