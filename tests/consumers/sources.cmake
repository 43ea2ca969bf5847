# Builds and runs the examples with qvnalu in their build, FROM a subdirectory or fetched. The options for developing
# qvnalu have no effect there.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

write_readme_program(${WORK}/readme.cpp)
configure(${SOURCE}/examples ${WORK}/build ${UNOPTIMISED}
  -DQVNALU_FROM=${FROM} -DUNITS_SOURCE=${WORK}/readme.cpp -DCMAKE_INSTALL_PREFIX=${WORK}/prefix)
run(${CMAKE_COMMAND} --build ${WORK}/build --parallel 2)
run_examples(${WORK}/build)

# No tests, tools, benchmarks or fuzzers; no warnings as errors; no flag of the library on its user.
file(READ ${WORK}/build/compile_commands.json commands)
string(JSON count LENGTH "${commands}")
math(EXPR last "${count} - 1")
set(own 0)
foreach(i RANGE ${last})
  string(JSON file GET "${commands}" ${i} file)
  string(JSON command GET "${commands}" ${i} command)
  string(FIND "${file}" "${SOURCE}/modules/" in_modules)
  if(in_modules EQUAL 0)
    set(unwanted " -W[a-z]")
  elseif(file MATCHES "/parameter_sets\\.cpp$")
    math(EXPR own "${own} + 1")
    set(unwanted " (-W[a-z]|-f|-DQV)")
  elseif(file MATCHES "/(readme|timing|player|core)\\.cpp$")
    math(EXPR own "${own} + 1")
    set(unwanted " (-W[a-z]|-f|-DQV|-std=[a-z+]*1[47])")
  else()
    message(FATAL_ERROR "the build of a user compiles ${file}")
  endif()
  if(command MATCHES "${unwanted}")
    message(FATAL_ERROR "${CMAKE_MATCH_0} is among the flags of a user's build: ${command}")
  endif()
endforeach()
if(NOT own EQUAL 5)
  message(FATAL_ERROR "${own} of 5 files of the examples found in compile_commands.json")
endif()

# The same with prefixed headers.
write_prefixed_program(${WORK}/prefixed.cpp)
configure(${SOURCE}/examples ${WORK}/build -DUNITS_SOURCE=${WORK}/prefixed.cpp)
run(${CMAKE_COMMAND} --build ${WORK}/build --target units)
expect_output(units.txt ${WORK}/build/units ${SOURCE}/samples/hevc_hdr10.h265)

# qvnalu is not installed with the user's programs.
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${CMAKE_COMMAND} --install ${WORK}/build)
if(EXISTS ${WORK}/prefix/include OR EXISTS ${WORK}/prefix/lib)
  message(FATAL_ERROR "the user's installation holds qvnalu")
endif()
