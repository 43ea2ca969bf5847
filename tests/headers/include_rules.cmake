cmake_minimum_required(VERSION 3.22)

# The library includes only its own headers, the contracts of modules/core, the start-code search and the standard
# library, so nothing of the stand-alone core. Nothing outside the library includes its detail/ folder. The standards'
# library includes only its own headers, the start-code search and the standard library. The start-code search includes
# only itself and the standard library; only the libraries and the inspector include it. The completion includes public
# headers of both libraries. Of the standards' library the stand-alone core includes the syntax functions of HDR Vivid
# alone, which are templates that need nothing to be linked.
set(library ${ROOT}/modules/demuxer/low_level/common)
set(bitstream ${ROOT}/modules/bitstream)
set(startcode ${ROOT}/modules/startcode)
set(completion ${ROOT}/modules/demuxer/low_level/completion)
set(failures "")

function(quoted_includes file result)
  file(STRINGS ${file} lines REGEX "^#include \"")
  set(names "")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^#include \"([^\"]+)\".*" "\\1" name "${line}")
    list(APPEND names ${name})
  endforeach()
  set(${result} "${names}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE library_files ${library}/*.h ${library}/*.cpp)
foreach(file IN LISTS library_files)
  quoted_includes(${file} names)
  foreach(name IN LISTS names)
    if(NOT EXISTS ${library}/${name} AND NOT EXISTS ${ROOT}/modules/core/${name}
       AND NOT (name MATCHES "^startcode/" AND EXISTS ${ROOT}/modules/${name}))
      list(APPEND failures "${file} includes ${name}")
    endif()
  endforeach()
endforeach()

# only_from(FOLDER REGEX): the files of FOLDER include files of modules/ that match, and the standard library.
function(only_from folder regex)
  foreach(file IN LISTS ${folder}_files)
    quoted_includes(${file} names)
    foreach(name IN LISTS names)
      if(NOT name MATCHES "${regex}" OR NOT EXISTS ${ROOT}/modules/${name})
        list(APPEND failures "${file} includes ${name}")
      endif()
    endforeach()
  endforeach()
  set(failures "${failures}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE bitstream_files ${bitstream}/*.h ${bitstream}/*.cpp)
only_from(bitstream "^(bitstream|startcode)/")
file(GLOB_RECURSE startcode_files ${startcode}/*.h ${startcode}/*.cpp)
only_from(startcode "^startcode/")

file(GLOB_RECURSE completion_files ${completion}/*.h ${completion}/*.cpp)
foreach(file IN LISTS completion_files)
  quoted_includes(${file} names)
  foreach(name IN LISTS names)
    if(name MATCHES "detail/|Syntax\\.h$" OR (NOT EXISTS ${completion}/${name} AND NOT EXISTS ${library}/${name}
       AND NOT (name MATCHES "^bitstream/" AND EXISTS ${ROOT}/modules/${name})))
      list(APPEND failures "${file} includes ${name}")
    endif()
  endforeach()
endforeach()

file(GLOB_RECURSE other_files
  ${ROOT}/modules/core/*.h ${ROOT}/modules/core/*.cpp ${ROOT}/tools/*.h ${ROOT}/tools/*.cpp
  ${ROOT}/tests/*.h ${ROOT}/tests/*.cpp ${ROOT}/bench/*.cpp ${ROOT}/fuzz/*.cpp ${ROOT}/examples/*.cpp)
foreach(file IN LISTS other_files)
  quoted_includes(${file} names)
  foreach(name IN LISTS names)
    if(name MATCHES "detail/|startcode/")
      list(APPEND failures "${file} includes ${name}")
    endif()
  endforeach()
endforeach()

file(GLOB core_files ${ROOT}/modules/core/standalone/*.h ${ROOT}/modules/core/standalone/*.cpp)
foreach(file IN LISTS core_files)
  quoted_includes(${file} names)
  foreach(name IN LISTS names)
    if(name MATCHES "^bitstream/" AND NOT name STREQUAL "bitstream/sei/HdrVividWindowSyntax.h")
      list(APPEND failures "${file} includes ${name}")
    endif()
  endforeach()
endforeach()

file(GLOB contracts ${ROOT}/modules/core/*.h)
foreach(file IN LISTS contracts)
  quoted_includes(${file} names)
  foreach(name IN LISTS names)
    if(NOT EXISTS ${ROOT}/modules/core/${name})
      list(APPEND failures "${file} includes ${name}")
    endif()
  endforeach()
endforeach()

if(failures)
  string(REPLACE ";" "\n" failures "${failures}")
  message(FATAL_ERROR "${failures}")
endif()
foreach(folder library bitstream startcode completion core)
  list(LENGTH ${folder}_files count)
  if(count EQUAL 0)
    message(FATAL_ERROR "no sources of ${folder}")
  endif()
endforeach()
