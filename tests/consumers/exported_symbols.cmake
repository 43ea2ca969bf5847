# What the shared LIBRARY shows is the list of exported_symbols.txt, whichever compiler built it.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

run(${NM} --dynamic --defined-only --demangle ${LIBRARY})
file(MAKE_DIRECTORY ${WORK})
file(WRITE ${WORK}/nm.txt "${output}")
file(STRINGS ${WORK}/nm.txt lines)
set(symbols "")
foreach(line IN LISTS lines)
  # Each constructor is there twice, for complete objects and for bases.
  string(REGEX REPLACE "^[0-9a-f]+ " "" symbol "${line}")
  list(APPEND symbols "${symbol}")
endforeach()
list(REMOVE_DUPLICATES symbols)
list(SORT symbols)
list(JOIN symbols "\n" symbols)
file(WRITE ${WORK}/exported_symbols.txt "${symbols}\n")

file(READ ${SOURCE}/tests/consumers/exported_symbols.txt expected)
if(NOT "${symbols}\n" STREQUAL expected)
  message(FATAL_ERROR "the exported symbols are those of ${WORK}/exported_symbols.txt, not the listed ones: "
                      "functions may be added to the list, and with a new major version leave it")
endif()
