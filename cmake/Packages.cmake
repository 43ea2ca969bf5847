# Debian packages of the three components: libqvnaluN (the shared library), libqvnalu-dev (headers, libraries to
# link with, package files) and qvinspect. scripts/packages builds them.
#
# QVNALU_STATIC_BUILD is a build with the static library, for libqvnalu-dev.
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
install(SCRIPT ${QVNALU_STATIC_BUILD}/cmake_install.cmake COMPONENT development)
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
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/modules/demuxer/low_level/common)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${debian}/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "low-level analysis of H.264 and H.265 streams
Finds and types NAL units, tells key pictures, reframes between start codes
and length fields, parses sequence parameter sets, walks SEI messages and
delivers HDR metadata. Programs bring the functions of a player's core.")

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
parameter sets, SEI messages, HDR metadata, and what is broken in them; as a
summary, as listings, for programs and for the browser.")
include(CPack)
