cmake_minimum_required(VERSION 3.22)

# The README shows the example program as it is.
file(READ ${ROOT}/README.md readme)
file(READ ${ROOT}/examples/units.cpp example)
string(FIND "${readme}" "${example}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "README.md does not hold examples/units.cpp as it is")
endif()
