# Functions that the scripts of this folder share. Each script is given SOURCE, the tree of qvnalu, WORK, a folder for
# its files, and the tools of the build that runs it.
cmake_minimum_required(VERSION 3.22)

# run(COMMAND...): sets the variable "output" to the command's output, which is shown when the command fails.
function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    string(REPLACE ";" " " command "${ARGN}")
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}${errors}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# What these tests build of the libraries is not what they test: without optimisation and debug information.
set(UNOPTIMISED -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0)

# configure(SOURCE BINARY ARGUMENT...)
function(configure source binary)
  run(${CMAKE_COMMAND} -S ${source} -B ${binary} -G ${GENERATOR}
    -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON ${ARGN})
endfunction()

# expect_output(EXPECTED COMMAND...): the command prints the text of the file EXPECTED in tests/consumers/expected.
function(expect_output expected)
  run(${ARGN})
  file(READ ${SOURCE}/tests/consumers/expected/${expected} text)
  if(NOT output STREQUAL text)
    message(FATAL_ERROR "${ARGN} printed\n${output}\ninstead of\n${text}")
  endif()
endfunction()

# write_readme_program(FILE): the program that the README shows.
function(write_readme_program file)
  file(READ ${SOURCE}/README.md readme)
  string(FIND "${readme}" "```cpp\n" begin)
  if(begin EQUAL -1)
    message(FATAL_ERROR "README.md shows no program")
  endif()
  math(EXPR begin "${begin} + 7")
  string(SUBSTRING "${readme}" ${begin} -1 program)
  string(FIND "${program}" "\n```" end)
  math(EXPR end "${end} + 1")
  string(SUBSTRING "${program}" 0 ${end} program)
  file(WRITE ${file} "${program}")
endfunction()

# write_prefixed_program(FILE): the same program with the headers as <qvnalu/...>, followed by the plain form: both may
# occur in one source.
function(write_prefixed_program file)
  write_readme_program(${file})
  file(READ ${file} program)
  string(REPLACE "#include \"QVNaluParser.h\"\n"
    "#include <qvnalu/QVCoreStandalone.h>\n#include <qvnalu/QVNaluParser.h>\n#include \"QVNaluParser.h\"\n"
    prefixed "${program}")
  if(prefixed STREQUAL program)
    message(FATAL_ERROR "the program of README.md does not include QVNaluParser.h")
  endif()
  file(WRITE ${file} "${prefixed}")
endfunction()

# run_examples(FOLDER): the programs print what is expected.
function(run_examples folder)
  expect_output(units.txt ${folder}/units ${SOURCE}/samples/hevc_hdr10.h265)
  expect_output(parameter_sets_hevc_hdr10.h265.txt ${folder}/parameter_sets ${SOURCE}/samples/hevc_hdr10.h265)
  foreach(stream avc_hrd_picstruct.h264 hevc_interlace_tff.h265)
    expect_output(parameter_sets_${stream}.txt ${folder}/parameter_sets ${SOURCE}/tests/streams/bundled/${stream})
    expect_output(timing_${stream}.txt ${folder}/timing ${SOURCE}/tests/streams/bundled/${stream})
  endforeach()
  foreach(sample avc_avc1 hevc_hdr_vivid)
    expect_output(player_${sample}.txt ${folder}/player ${SOURCE}/samples/${sample}.mp4)
  endforeach()
endfunction()

# expect_kind(KIND LIBRARY PROGRAM): the program is linked to the static or to the shared LIBRARY.
function(expect_kind kind library program)
  run(${READELF} -d ${program})
  string(FIND "${output}" "[lib${library}.so." needed)
  if(kind STREQUAL "shared" AND needed EQUAL -1)
    message(FATAL_ERROR "${program} does not load the shared library:\n${output}")
  elseif(kind STREQUAL "static" AND NOT needed EQUAL -1)
    message(FATAL_ERROR "${program} loads the shared library:\n${output}")
  endif()
endfunction()
