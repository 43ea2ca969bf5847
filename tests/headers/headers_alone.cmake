cmake_minimum_required(VERSION 3.22)

# Each public header compiles alone and when included twice, without warnings.
set(folders ${ROOT}/modules/core ${ROOT}/modules/core/standalone ${ROOT}/modules/demuxer/low_level/common
  ${ROOT}/modules/demuxer/low_level/completion)
set(flags -std=c++${STANDARD} -fsyntax-only -x c++ -Werror -Wall -Wextra -Wpedantic)
if(COMPILER MATCHES "clang")
  # All warnings except those about features that older language versions lack and about padding in records.
  list(APPEND flags -Weverything -Wno-c++98-compat -Wno-c++98-compat-pedantic -Wno-padded
    -Wno-unknown-warning-option -Wno-unsafe-buffer-usage)
else()
  list(APPEND flags -Wcast-align=strict -Wcast-qual -Wconversion -Wctor-dtor-privacy -Wdouble-promotion
    -Wduplicated-branches -Wduplicated-cond -Wextra-semi -Wfloat-equal -Wformat=2 -Wlogical-op -Wmissing-declarations
    -Wnon-virtual-dtor -Wnull-dereference -Wold-style-cast -Woverloaded-virtual -Wredundant-decls -Wshadow
    -Wsign-conversion -Wstrict-null-sentinel -Wundef -Wunused -Wuseless-cast -Wzero-as-null-pointer-constant)
endif()
foreach(folder IN LISTS folders)
  list(APPEND flags -I${folder})
  file(GLOB found ${folder}/*.h)
  list(APPEND headers ${found})
endforeach()

list(LENGTH headers count)
if(count LESS 20)
  message(FATAL_ERROR "only ${count} headers found below ${ROOT}/modules")
endif()
set(failures "")
foreach(header IN LISTS headers)
  # Included, as in a user's source: compilers accept some things in a main file that they warn about in a header.
  execute_process(COMMAND ${COMPILER} ${flags} -include ${header} -include ${header} /dev/null
                  ERROR_VARIABLE errors RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    string(APPEND failures "${header}\n${errors}\n")
  endif()
endforeach()
if(failures)
  message(FATAL_ERROR "${failures}")
endif()
message(STATUS "${count} headers compile alone as C++${STANDARD} with ${COMPILER}")
