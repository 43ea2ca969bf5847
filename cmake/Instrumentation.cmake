# Sanitizers and coverage reach every target, or their reports would stop at the first one without.
if(QVNALU_SANITIZE)
  add_compile_options(-fsanitize=${QVNALU_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QVNALU_SANITIZE})
endif()
if(QVNALU_COVERAGE)
  # A function that is inlined by force would be counted anew wherever it is called.
  add_compile_options(--coverage -fprofile-update=atomic -Dalways_inline=unused)
  add_link_options(--coverage)
endif()
