# Debian packages of the three components: libqvnaluN (the shared library), libqvnalu-dev (headers, libraries to
# link with, package files) and qvinspect. scripts/dev/packages builds them.
#
# libqvnalu-dev has the static library too. It comes from a build of its own: QVNALU_STATIC_BUILD is that build's folder.
if(NOT BUILD_SHARED_LIBS)
  message(FATAL_ERROR "QVNALU_PACKAGES packages the shared library: configure with -DBUILD_SHARED_LIBS=ON")
endif()
if(NOT QVNALU_STATIC_BUILD)
  message(FATAL_ERROR "QVNALU_PACKAGES packages the static library too: build it in a folder of its own with "
    "-DBUILD_SHARED_LIBS=OFF and name the folder with -DQVNALU_STATIC_BUILD=FOLDER; scripts/dev/packages does both")
endif()
get_filename_component(static_build ${QVNALU_STATIC_BUILD} ABSOLUTE BASE_DIR ${CMAKE_SOURCE_DIR})
if(NOT EXISTS ${static_build}/cmake_install.cmake)
  message(FATAL_ERROR "QVNALU_STATIC_BUILD is ${QVNALU_STATIC_BUILD}, which is not a build folder that can be installed")
endif()
if(NOT QVNALU_INSTALL OR NOT QVNALU_BUILD_TOOLS)
  message(FATAL_ERROR "QVNALU_PACKAGES packages what is installed, qvinspect included: "
    "configure with -DQVNALU_INSTALL=ON -DQVNALU_BUILD_TOOLS=ON")
endif()
set(library libqvnalu${PROJECT_VERSION_MAJOR})
set(debian ${PROJECT_SOURCE_DIR}/packaging/debian)

file(STRINGS ${debian}/changelog newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^qvnalu \\(${PROJECT_VERSION}-([0-9]+)\\) ")
  message(FATAL_ERROR "packaging/debian/changelog begins with \"${newest}\" instead of version ${PROJECT_VERSION}")
endif()
set(release ${CMAKE_MATCH_1})
execute_process(COMMAND gzip -9nc ${debian}/changelog OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.Debian.gz
  COMMAND_ERROR_IS_FATAL ANY)

set(package_of_runtime ${library})
set(package_of_development libqvnalu-dev)
set(package_of_tools qvinspect)
foreach(component runtime development tools)
  install(FILES ${PROJECT_BINARY_DIR}/changelog.Debian.gz ${debian}/copyright
    DESTINATION share/doc/${package_of_${component}} COMPONENT ${component})
  install(FILES ${debian}/${component}.lintian-overrides
    DESTINATION share/lintian/overrides RENAME ${package_of_${component}} COMPONENT ${component})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package_of_${component}})
endforeach()
install(SCRIPT ${static_build}/cmake_install.cmake COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION share/doc/libqvnalu-dev COMPONENT development)

set(CPACK_PACKAGE_NAME qvnalu)
set(CPACK_PACKAGE_CONTACT "qvnalu maintainers <maintainers@qvnalu.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_PRE_BUILD_SCRIPTS ${debian}/finish.cmake)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/modules/demuxer/low_level/common ${PROJECT_BINARY_DIR}/modules/bitstream)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${debian}/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "low-level analysis of H.264 and H.265 streams
Finds and types NAL units, detects key pictures, reframes between start codes
and length fields, parses sequence parameter sets, walks SEI messages and
delivers HDR metadata. Programs provide the functions of a player's core.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}-${release})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "low-level analysis of H.264 and H.265 streams (development files)
Headers, the static library, a stand-alone core, CMake and pkg-config files,
and two example programs.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION video)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}-${release})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "inspector of H.264 and H.265 streams
Shows what raw byte streams and containers hold: access units, NAL units,
parameter sets, SEI messages, HDR metadata and errors. Prints a summary or a
listing, and writes JSON, CSV and a report for the browser.")
include(CPack)
