# Debian packages need a shared build and a static one. Without either, configuring fails and names the option.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

# expect_refusal(TEXT OPTION...)
function(expect_refusal text)
  file(REMOVE_RECURSE ${WORK}/build)
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G ${GENERATOR}
      -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM} -DCMAKE_CXX_COMPILER=${COMPILER} -DQVNALU_BUILD_TESTS=OFF
      -DQVNALU_BUILD_TOOLS=OFF -DQVNALU_BUILD_FUZZERS=OFF -DQVNALU_PACKAGES=ON ${ARGN}
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
  string(REGEX REPLACE "[ \n]+" " " errors "${errors}")
  string(FIND "${errors}" "${text}" position)
  if(result EQUAL 0 OR position EQUAL -1)
    message(FATAL_ERROR "configuring packages with ${ARGN} ended with ${result} and without \"${text}\":\n${errors}")
  endif()
endfunction()

expect_refusal("configure with -DBUILD_SHARED_LIBS=ON")
expect_refusal("name the folder with -DQVNALU_STATIC_BUILD=FOLDER" -DBUILD_SHARED_LIBS=ON)
expect_refusal("QVNALU_STATIC_BUILD is ${WORK}, which is not a build folder"
  -DBUILD_SHARED_LIBS=ON -DQVNALU_STATIC_BUILD=${WORK})
file(WRITE ${WORK}/static/cmake_install.cmake "")
expect_refusal("qvinspect included" -DBUILD_SHARED_LIBS=ON -DQVNALU_STATIC_BUILD=${WORK}/static)
