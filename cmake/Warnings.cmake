# qvnalu_warnings(TARGET) turns on the project's warnings, as errors, for TARGET only.
function(qvnalu_warnings target)
  if(NOT QVNALU_DEVELOPER)
    return()
  endif()
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Werror
    -Wcast-align -Wcast-qual -Wconversion -Wdouble-promotion -Wformat=2 -Wmissing-declarations
    -Wnon-virtual-dtor -Wnull-dereference -Wold-style-cast -Woverloaded-virtual -Wshadow
    -Wsign-conversion -Wundef -Wunused)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE
      -Wduplicated-branches -Wduplicated-cond -Wlogical-op)
  elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE -Wextra-semi -Wshadow-all -Wno-shadow-field-in-constructor)
  endif()
endfunction()
