# Builds and runs the examples, and the program with prefixed headers, with the library of one KIND that is installed at
# PREFIX, using the flags from pkg-config.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

set(ENV{PKG_CONFIG_PATH} ${PREFIX}/lib/pkgconfig)
function(build program standard library sources packages)
  run(${PKG_CONFIG} --cflags --libs ${packages})
  separate_arguments(flags UNIX_COMMAND "${output}")
  run(${LAUNCHER} ${COMPILER} -std=${standard} -o ${WORK}/${program} ${sources} ${flags})
  expect_kind(${KIND} ${library} ${WORK}/${program})
endfunction()

file(MAKE_DIRECTORY ${WORK})
write_readme_program(${WORK}/readme.cpp)
build(units c++11 qvnalu ${WORK}/readme.cpp "qvnalu;qvcore_standalone")
write_prefixed_program(${WORK}/prefixed.cpp)
build(prefixed c++11 qvnalu ${WORK}/prefixed.cpp "qvnalu;qvcore_standalone")
build(parameter_sets c++17 qvbitstream ${SOURCE}/examples/parameter_sets.cpp qvbitstream)
build(timing c++11 qvnalu ${SOURCE}/examples/timing.cpp "qvsps_completion;qvcore_standalone")
build(player c++11 qvnalu "${SOURCE}/examples/player/player.cpp;${SOURCE}/examples/player/core.cpp"
  "qvnalu;libavformat;libavcodec;libavutil")
run(${PKG_CONFIG} --modversion qvnalu)
string(STRIP "${output}" version)
if(NOT version STREQUAL VERSION)
  message(FATAL_ERROR "qvnalu.pc has version ${version} instead of ${VERSION}")
endif()

set(ENV{LD_LIBRARY_PATH} ${PREFIX}/lib)
run_examples(${WORK})
expect_output(units.txt ${WORK}/prefixed ${SOURCE}/samples/hevc_hdr10.h265)

# Every installed header of the standards' library compiles, and the library links alone.
file(GLOB_RECURSE headers RELATIVE ${PREFIX}/include/qvnalu ${PREFIX}/include/qvnalu/bitstream/*.h)
list(LENGTH headers count)
if(count LESS 40)
  message(FATAL_ERROR "only ${count} headers of the standards' library are installed")
endif()
list(TRANSFORM headers REPLACE "(.+)" "#include \"\\1\"\n")
list(JOIN headers "" includes)
file(WRITE ${WORK}/bitstream.cpp "${includes}
int main() { return qv::avc::readSps({}).ok() ? 1 : 0; }
")
run(${PKG_CONFIG} --cflags --libs qvbitstream)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${LAUNCHER} ${COMPILER} -std=c++17 -Wall -Wextra -Werror -o ${WORK}/bitstream ${WORK}/bitstream.cpp ${flags})
run(${WORK}/bitstream)
