# The fuzz targets (tests/attack/fuzz), each with what it tests, built with coverage for libFuzzer.
set(fuzz_folder ${root}/tests/attack/fuzz)
add_library(fuzz_parts OBJECT ${engine} ${portable_pieces} engine/platform.cpp ${fuzz_folder}/entry.cpp ${enumerations})
add_library(fuzz_options INTERFACE)
target_compile_options(fuzz_options INTERFACE -fsanitize=fuzzer-no-link -Wall -Wextra -Werror)
target_include_directories(fuzz_options INTERFACE
  platform ${CMAKE_BINARY_DIR}/generated ${root}/src ${root} ${root}/tests)
target_compile_definitions(fuzz_options INTERFACE _stricmp=strcasecmp _strnicmp=strncasecmp)
target_link_libraries(fuzz_parts PRIVATE fuzz_options)
foreach(target IN LISTS fuzz_targets)
  add_executable(fuzz_${target} ${fuzz_folder}/${target}.cpp $<TARGET_OBJECTS:fuzz_parts>)
  target_link_libraries(fuzz_${target} PRIVATE fuzz_options crypto)
  target_link_options(fuzz_${target} PRIVATE -fsanitize=fuzzer)
endforeach()
