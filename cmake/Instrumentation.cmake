# Sanitizers and coverage reach every target, or their reports would stop at the first one without.
if(QVNALU_SANITIZE)
  add_compile_options(-fsanitize=${QVNALU_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QVNALU_SANITIZE})
endif()
if(QVNALU_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
