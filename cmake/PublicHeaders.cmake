# The public headers, in qvnalu_public_headers. In qvnalu_prefixed_headers is an include folder of the build tree that
# has them under qvnalu/, so that #include <qvnalu/QVNaluParser.h> works in builds that contain qvnalu, as it does with
# an installed one.
file(GLOB qvnalu_public_headers CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/modules/core/*.h
  ${PROJECT_SOURCE_DIR}/modules/core/standalone/*.h
  ${PROJECT_SOURCE_DIR}/modules/demuxer/low_level/common/*.h
  ${PROJECT_SOURCE_DIR}/modules/demuxer/low_level/completion/*.h)
list(FILTER qvnalu_public_headers EXCLUDE REGEX "/QVSideDataLayout\\.h$")

set(qvnalu_prefixed_headers ${PROJECT_BINARY_DIR}/include)
foreach(header IN LISTS qvnalu_public_headers)
  get_filename_component(name ${header} NAME)
  file(CONFIGURE OUTPUT ${qvnalu_prefixed_headers}/qvnalu/${name} CONTENT "#include \"${header}\"\n" @ONLY)
endforeach()
