# Writes the C++ source file OUTPUT. It includes HEADER and defines, in namespace NAMESPACE, a character array NAME
# with the content of FILE for each NAME=FILE pair of TEXTS, and for each NAME in HASHED an array NAMEHash with the
# SHA-256 of that content as a Content-Security-Policy writes it.
cmake_minimum_required(VERSION 3.22)

# The text's hash in base64 (RFC 4648 section 4).
function(base64_sha256 text result)
  set(alphabet ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
  string(SHA256 hash "${text}")
  set(base64 "")
  # 32 bytes and a zero byte are 11 groups of three bytes, each of them four characters.
  foreach(group RANGE 0 60 6)
    string(SUBSTRING "${hash}00" ${group} 6 bytes)
    foreach(shift 18 12 6 0)
      math(EXPR index "0x${bytes} >> ${shift} & 63")
      string(SUBSTRING ${alphabet} ${index} 1 character)
      string(APPEND base64 ${character})
    endforeach()
  endforeach()
  # The last character is that of the zero byte: padding.
  string(REGEX REPLACE "A$" "=" base64 ${base64})
  set(${result} ${base64} PARENT_SCOPE)
endfunction()

set(source "#include \"${HEADER}\"\n\nnamespace ${NAMESPACE} {\n")
foreach(text IN LISTS TEXTS)
  string(REGEX MATCH "^([^=]+)=(.+)$" pair "${text}")
  set(name "${CMAKE_MATCH_1}")
  file(READ "${CMAKE_MATCH_2}" content)
  string(APPEND source "\nconst char ${name}[] = R\"embedded(${content})embedded\";\n")
  if(name IN_LIST HASHED)
    base64_sha256("${content}" hash)
    string(APPEND source "const char ${name}Hash[] = \"sha256-${hash}\";\n")
  endif()
endforeach()
string(APPEND source "\n}  // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}" "${source}")
