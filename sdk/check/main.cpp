// Checks an engine library against its contract: check_engine DLL [OPTIONS] [FAMILIES...]
//   --keys FILE --pin PIN --store FOLDER   what sessions are opened with (LocalParamRecord); or
//   --profile NAME                         the profile
//   --folder FOLDER                        for files
//   --hash NAME                            a hash algorithm of the engine's, SHA-256 unless named
//   --refused FILE                         a certificate in DER that does not verify
//   --crl FILE                             a revocation list in DER that can be added
//   --change-store                         the store may be changed
//   --windows                              windows may be shown, which somebody closes
//   --seconds NUMBER                       the longest that one check may take, 60 unless named
// Prints a table. The exit code is 0 if nothing failed and everything is supported, 1 otherwise, 2 if nothing was
// checked.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "checks.h"

using namespace check;

namespace {

struct Family {
  const char* name;
  void (*run)(Kit&);
};

constexpr Family kFamilies[] = {
    {"exports", CheckExports}, {"sessions", CheckSessions}, {"nulls", CheckNulls},       {"texts", CheckTexts},
    {"memory", CheckMemory},   {"records", CheckRecords},   {"messages", CheckMessages}, {"files", CheckFiles},
    {"streams", CheckStreams}, {"codes", CheckCodes},       {"store", CheckStore},
};

/// The options and the families that are named.
bool Read(int count, char** values, Options& options, std::vector<std::string>& families) {
  struct {
    const char* name;
    std::string* value;
  } const kValues[] = {
      {"--keys", &options.keys},       {"--pin", &options.pin},        {"--store", &options.store},
      {"--profile", &options.profile}, {"--folder", &options.scratch}, {"--hash", &options.hash},
      {"--refused", &options.refused}, {"--crl", &options.crl},        {"--seconds", &options.seconds},
  };
  for (int i = 2; i < count; ++i) {
    const auto named = [&](const auto& option) { return std::strcmp(option.name, values[i]) == 0; };
    const auto* option = std::find_if(std::begin(kValues), std::end(kValues), named);
    if (option != std::end(kValues)) {
      if (++i == count) return false;
      *option->value = values[i];
    } else if (std::strcmp(values[i], "--change-store") == 0) {
      options.mayChange = true;
    } else if (std::strcmp(values[i], "--windows") == 0) {
      options.mayShow = true;
    } else if (std::any_of(std::begin(kFamilies), std::end(kFamilies), named)) {
      families.push_back(values[i]);
    } else {
      return false;
    }
  }
  return count > 1;
}

std::wstring Wide(const char* text) {
  wchar_t wide[MAX_PATH];
  return MultiByteToWideChar(CP_ACP, 0, text, -1, wide, MAX_PATH) > 0 ? wide : L"";
}

}  // namespace

int main(int count, char** values) {
  Options options;
  std::vector<std::string> families;
  if (!Read(count, values, options, families)) {
    std::puts("usage: check_engine DLL [OPTIONS] [FAMILIES...]");
    return 2;
  }
  Engine engine;
  const std::string problem = engine.load(Wide(values[1]));
  if (!problem.empty()) {
    std::printf("%s: %s\n", values[1], problem.c_str());
    return 2;
  }
  Report report(static_cast<unsigned>(std::max(1, std::atoi(options.seconds.c_str()))));
  Kit kit(engine, report, options);
  for (const Family& family : kFamilies) {
    if (families.empty() || std::find(families.begin(), families.end(), family.name) != families.end()) family.run(kit);
  }
  return report.finish();
}
