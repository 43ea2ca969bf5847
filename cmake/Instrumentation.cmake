# Sanitizers and coverage apply to every target: an uninstrumented one would leave a gap in their reports.
if(QVNALU_SANITIZE)
  add_compile_options(-fsanitize=${QVNALU_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QVNALU_SANITIZE})
endif()
if(QVNALU_COVERAGE)
  # A force-inlined function would be counted separately at each call site.
  add_compile_options(--coverage -fprofile-update=atomic -Dalways_inline=unused)
  add_link_options(--coverage)
endif()
