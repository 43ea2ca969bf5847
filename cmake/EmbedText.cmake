# Writes the C++ source OUTPUT, which includes HEADER and defines in namespace NAMESPACE a character array for
# each of TEXTS, pairs of NAME=FILE.
set(source "#include \"${HEADER}\"\n\nnamespace ${NAMESPACE} {\n")
foreach(text IN LISTS TEXTS)
  string(REGEX MATCH "^([^=]+)=(.+)$" pair "${text}")
  set(name "${CMAKE_MATCH_1}")
  file(READ "${CMAKE_MATCH_2}" content)
  string(APPEND source "\nconst char ${name}[] = R\"embedded(${content})embedded\";\n")
endforeach()
string(APPEND source "\n}  // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}" "${source}")
