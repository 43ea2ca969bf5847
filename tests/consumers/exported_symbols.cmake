# The symbols that the shared LIBRARY exports are those of exported_symbols.txt, with any compiler.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

run(${NM} --dynamic --defined-only --demangle ${LIBRARY})
file(MAKE_DIRECTORY ${WORK})
file(WRITE ${WORK}/nm.txt "${output}")
file(STRINGS ${WORK}/nm.txt lines)
set(symbols "")
foreach(line IN LISTS lines)
  # Each constructor has two symbols, for complete objects and for bases.
  string(REGEX REPLACE "^[0-9a-f]+ " "" symbol "${line}")
  list(APPEND symbols "${symbol}")
endforeach()
list(REMOVE_DUPLICATES symbols)
list(SORT symbols)
list(JOIN symbols "\n" symbols)
file(WRITE ${WORK}/exported_symbols.txt "${symbols}\n")

file(READ ${SOURCE}/tests/consumers/exported_symbols.txt expected)
if(NOT "${symbols}\n" STREQUAL expected)
  message(FATAL_ERROR "the exported symbols are those of ${WORK}/exported_symbols.txt, not those of the list: "
                      "functions may be added to the list; only a new major version may remove one")
endif()
