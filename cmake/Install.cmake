# Installation. Components: runtime (the shared library), development (headers, libraries to link with, package
# files) and tools (qvinspect and its manuals).
#
# One prefix may hold both the static and the shared library, from two builds; qvnaluConfig.cmake chooses between them.
#
# Programs include "QVNaluParser.h" or <qvnalu/QVNaluParser.h>: both folders are on their include path.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(headers ${CMAKE_INSTALL_INCLUDEDIR}/qvnalu)
set(package_files ${CMAKE_INSTALL_LIBDIR}/cmake/qvnalu)
if(BUILD_SHARED_LIBS)
  set(kind shared)
else()
  set(kind static)
endif()

install(FILES ${qvnalu_public_headers} DESTINATION ${headers} COMPONENT development)
# The headers of the standards' library keep their folders. Those of its syntax functions and of their uses are
# private, except the reader, which a public record contains.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/modules/bitstream DESTINATION ${headers} COMPONENT development
  FILES_MATCHING PATTERN "*.h"
  PATTERN "*Syntax.h" EXCLUDE
  REGEX "/sei/(AnnouncedSps|EntryTemplates|FrameNumRange|HrdInForce|Payload(List|Sets|Templates|Uses)|SeiUnit)\\.h$" EXCLUDE
  REGEX "/sei/(Repetition|T35Body(Templates|Uses))\\.h$" EXCLUDE
  REGEX "/syntax/(EmulationPrevention|Tracer|Uses|Writer)\\.h$" EXCLUDE
  REGEX "/units/(ConfigurationFault|FaultTexts|SpsHead|UnitUsesTemplates)\\.h$" EXCLUDE)

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)

install(TARGETS qvnalu qvbitstream qvsps_completion EXPORT qvnalu_${kind}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${headers} ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS qvcore_standalone EXPORT qvnalu_core
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${headers} ${CMAKE_INSTALL_INCLUDEDIR})
set_target_properties(qvnalu PROPERTIES EXPORT_NAME nalu)
set_target_properties(qvbitstream PROPERTIES EXPORT_NAME bitstream)
set_target_properties(qvsps_completion PROPERTIES EXPORT_NAME sps_completion)
set_target_properties(qvcore_standalone PROPERTIES EXPORT_NAME core_standalone)
foreach(targets ${kind} core)
  install(EXPORT qvnalu_${targets} FILE qvnalu-${targets}-targets.cmake NAMESPACE qv::
    DESTINATION ${package_files} COMPONENT development)
endforeach()

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qvnaluConfig.cmake.in
  ${PROJECT_BINARY_DIR}/qvnaluConfig.cmake INSTALL_DESTINATION ${package_files}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qvnaluConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qvnaluConfig.cmake ${PROJECT_BINARY_DIR}/qvnaluConfigVersion.cmake
  DESTINATION ${package_files} COMPONENT development)

# Paths in the package files are relative to the files, so that an installation can be moved.
set(from_here ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH QVNALU_PC_PREFIX ${from_here} ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH QVNALU_PC_INCLUDEDIR ${from_here} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
foreach(name qvnalu qvbitstream qvsps_completion qvcore_standalone)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

if(QVNALU_BUILD_TOOLS)
  install(TARGETS qvinspect RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/qvinspect.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/inspector.md ${PROJECT_SOURCE_DIR}/docs/inspector-output.md
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qvinspect COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/qvinspect/qvinspect.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME qvinspect COMPONENT tools)
endif()
