# The fuzz targets (tests/attack/fuzz), each with what it tests, built with coverage for libFuzzer.
set(fuzz_folder ${root}/tests/attack/fuzz)
foreach(target IN LISTS fuzz_targets)
  add_executable(fuzz_${target} ${fuzz_folder}/${target}.cpp ${fuzz_folder}/entry.cpp $<TARGET_OBJECTS:native_parts>)
  target_link_libraries(fuzz_${target} PRIVATE native_options crypto)
  target_link_options(fuzz_${target} PRIVATE -fsanitize=fuzzer)
endforeach()
