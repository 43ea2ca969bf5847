# Builds the library of one KIND, static or shared, installs it, and moves the installation to PREFIX.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

set(shared OFF)
if(KIND STREQUAL "shared")
  set(shared ON)
endif()
set(installed ${WORK}/installed)
file(REMOVE_RECURSE ${installed} ${PREFIX})
configure(${SOURCE} ${WORK}/build
  -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=${shared} -DCMAKE_INSTALL_PREFIX=${installed}
  -DCMAKE_INSTALL_LIBDIR=lib -DQVNALU_BUILD_TESTS=OFF -DQVNALU_BUILD_TOOLS=OFF
  -DQVNALU_BUILD_FUZZERS=OFF)
run(${CMAKE_COMMAND} --build ${WORK}/build --parallel 2)
run(${CMAKE_COMMAND} --install ${WORK}/build)

# No installed file contains the path where it was installed.
file(GLOB_RECURSE package_files ${installed}/lib/cmake/* ${installed}/lib/pkgconfig/*)
list(LENGTH package_files count)
if(count LESS 10)
  message(FATAL_ERROR "only ${count} package files in ${installed}")
endif()
foreach(file IN LISTS package_files)
  file(READ ${file} text)
  foreach(place ${WORK} ${SOURCE})
    string(FIND "${text}" "${place}" position)
    if(NOT position EQUAL -1)
      message(FATAL_ERROR "${file} names ${place}")
    endif()
  endforeach()
endforeach()

# The headers are the public ones, in a folder for them alone.
file(GLOB folders LIST_DIRECTORIES TRUE RELATIVE ${installed}/include ${installed}/include/*)
file(GLOB_RECURSE headers RELATIVE ${installed}/include/qvnalu ${installed}/include/qvnalu/*)
if(NOT folders STREQUAL "qvnalu" OR NOT "QVNaluParser.h" IN_LIST headers OR NOT "QVCoreStandalone.h" IN_LIST headers)
  message(FATAL_ERROR "the installed headers: ${folders}: ${headers}")
endif()
foreach(header IN LISTS headers)
  if(header MATCHES "Layout|StartCode(Search|Kernel)|BitWindow|EmulationPrevention|FaultTexts|Syntax\\.h$|Writer|Tracer|Templates|SpsHead|AnnouncedSps|FrameNumRange|HrdInForce|Payload(List|Sets|Uses)|Repetition|SeiUnit|T35BodyUses" OR (header MATCHES "/" AND NOT header MATCHES "^bitstream/"))
    message(FATAL_ERROR "${header} is private and was installed")
  endif()
endforeach()

get_filename_component(parent ${PREFIX} DIRECTORY)
file(MAKE_DIRECTORY ${parent})
file(RENAME ${installed} ${PREFIX})
