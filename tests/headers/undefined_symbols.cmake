cmake_minimum_required(VERSION 3.22)

# The only undefined symbols of LIBRARY are the C++ runtime and, with PLATFORM, the platform functions.
execute_process(COMMAND ${NM} --undefined-only --extern-only --format=posix ${LIBRARY}
                OUTPUT_VARIABLE undefined_output RESULT_VARIABLE undefined_result)
execute_process(COMMAND ${NM} --defined-only --extern-only --format=posix ${LIBRARY}
                OUTPUT_VARIABLE defined_output RESULT_VARIABLE defined_result)
if(NOT undefined_result EQUAL 0 OR NOT defined_result EQUAL 0)
  message(FATAL_ERROR "${NM} could not read ${LIBRARY}")
endif()
string(REGEX MATCHALL "[^\n ]+ [Uw]" undefined "${undefined_output}")
string(REGEX MATCHALL "[^\n ]+ [TVWBDRui] " defined "${defined_output}")
list(TRANSFORM undefined REPLACE " .*" "")
list(TRANSFORM defined REPLACE " .*" "")
list(REMOVE_DUPLICATES undefined)
if(defined)
  list(REMOVE_ITEM undefined ${defined})
endif()

set(platform
  qvTraceLog qvMalloc qvMallocz createQVSeiInfo createSideDataFromQVSeiInfo freepQVSeiInfo
  _ZN10QVDumpData14dumpActualDataEPKcPKhi
  _ZN19qv_hdr_vivid_parser56fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSeiERK9QVSeiItemP25QVHDRVividDynamicMetadata)
if(NOT PLATFORM)
  set(platform "")
endif()
set(runtime "^(_Z(nw|na|dl|da)|_ZSt|_ZNS[a-zA-Z]*|_ZNKS|_ZTV|_ZTI|__cxa_|__gxx_|_Unwind_|__stack_chk_fail)")
# The compiler's runtime describes the processor in __cpu_model; shared_ptr uses __libc_single_threaded.
# Clang calls bcmp where memcmp is asked for equality.
set(c_library __cpu_model __libc_single_threaded __cpu_indicator_init malloc free bcmp memchr memcmp memcpy memmove memset strcmp strlen snprintf __snprintf_chk abort
  _GLOBAL_OFFSET_TABLE_)
# The standards' library gives coded numbers with an exponent as double.
if(NOT PLATFORM)
  list(APPEND c_library ldexp)
endif()

set(uses_platform FALSE)
set(strangers "")
foreach(symbol IN LISTS undefined)
  if(symbol IN_LIST platform)
    set(uses_platform TRUE)
  elseif(symbol IN_LIST c_library OR symbol MATCHES "${runtime}")
  elseif(SANITIZE AND symbol MATCHES "^(__asan_|__ubsan_|__tsan_|__lsan_|__sanitizer_|__odr_asan)")
  elseif(COVERAGE AND symbol MATCHES "^(__gcov_|__llvm_)")
  else()
    list(APPEND strangers ${symbol})
  endif()
endforeach()
if(strangers)
  message(FATAL_ERROR "the library needs more than the platform functions: ${strangers}")
endif()
if(PLATFORM AND NOT uses_platform)
  message(FATAL_ERROR "no platform function found among: ${undefined}")
endif()
message(STATUS "undefined symbols: ${undefined}")
