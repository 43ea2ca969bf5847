cmake_minimum_required(VERSION 3.22)

# The README contains the example program, unchanged.
file(READ ${ROOT}/README.md readme)
file(READ ${ROOT}/examples/units.cpp example)
string(FIND "${readme}" "${example}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "README.md does not contain examples/units.cpp unchanged")
endif()
