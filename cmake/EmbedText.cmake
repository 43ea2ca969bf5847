# Writes the C++ source file OUTPUT. It includes HEADER and defines, in namespace NAMESPACE, a character array NAME
# with the content of FILE for each NAME=FILE pair of TEXTS.
set(source "#include \"${HEADER}\"\n\nnamespace ${NAMESPACE} {\n")
foreach(text IN LISTS TEXTS)
  string(REGEX MATCH "^([^=]+)=(.+)$" pair "${text}")
  set(name "${CMAKE_MATCH_1}")
  file(READ "${CMAKE_MATCH_2}" content)
  string(APPEND source "\nconst char ${name}[] = R\"embedded(${content})embedded\";\n")
endforeach()
string(APPEND source "\n}  // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}" "${source}")
