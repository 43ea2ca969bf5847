# Prepares installed files as Debian's policy requires: compresses documents, and strips programs and libraries. CPack
# runs this on its copies.

# staged(RESULT NAME...): the files with these names.
function(staged result)
  set(files "")
  foreach(name IN LISTS ARGN)
    file(GLOB_RECURSE found "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/${name}")
    if(NOT found)
      message(FATAL_ERROR "no ${name} in ${CPACK_TEMPORARY_INSTALL_DIRECTORY}")
    endif()
    list(APPEND files ${found})
  endforeach()
  set(${result} "${files}" PARENT_SCOPE)
endfunction()

staged(changelog CHANGELOG.md)
get_filename_component(folder ${changelog} DIRECTORY)
file(RENAME ${changelog} ${folder}/changelog)
staged(documents qvinspect.1 changelog)
execute_process(COMMAND gzip -9n ${documents} COMMAND_ERROR_IS_FATAL ANY)

set(sections --remove-section=.comment --remove-section=.note)
staged(archives *.a)
execute_process(COMMAND strip --strip-debug ${sections} --enable-deterministic-archives ${archives}
  COMMAND_ERROR_IS_FATAL ANY)
staged(programs libqvnalu.so.*.*.* libqvbitstream.so.*.*.* bin/qvinspect)
execute_process(COMMAND strip --strip-unneeded ${sections} ${programs} COMMAND_ERROR_IS_FATAL ANY)
