// Checks the code page, on which texts depend, and removes the files of this process in the end.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "engine_test.h"

namespace {

void RemoveScratch() {
  std::error_code ignored;
  std::filesystem::remove_all(std::filesystem::path(ScratchPath("")).parent_path(), ignored);
}

}  // namespace

int main(int count, char** arguments) {
  ::testing::InitGoogleTest(&count, arguments);
  if (GetACP() != 1251) {
    std::fprintf(stderr, "the ANSI code page is %u; these tests need 1251 (tools/wine sets it)\n", GetACP());
    return 1;
  }
  if (!FileExists(MaterialPath("data.bin"))) {
    std::fprintf(stderr,
                 "there is no material for these tests: TAVL_STANDIN_MATERIAL is to be a folder of make-material\n");
    return 1;
  }
  // A process that crashed may have left its files, and numbers of processes come again.
  RemoveScratch();
  const int result = RUN_ALL_TESTS();
  RemoveScratch();
  return result;
}
