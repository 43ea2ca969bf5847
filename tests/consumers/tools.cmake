# What the component tools of BUILD installs: the inspector, which runs, its manuals and its completion.
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${prefix})
run(${CMAKE_COMMAND} --install ${BUILD} --component tools --prefix ${prefix})
file(GLOB_RECURSE installed RELATIVE ${prefix} ${prefix}/*)
list(SORT installed)
set(expected
  bin/qvinspect
  share/bash-completion/completions/qvinspect
  share/doc/qvinspect/inspector-output.md
  share/doc/qvinspect/inspector.md
  share/man/man1/qvinspect.1)
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "installed: ${installed}\ninstead of: ${expected}")
endif()
run(${prefix}/bin/qvinspect --version)
if(NOT output MATCHES "${VERSION}")
  message(FATAL_ERROR "qvinspect --version printed ${output}")
endif()
