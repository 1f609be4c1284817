// The engine's file and memory functions from the command line, for tests against the openssl command:
//   standin_drive KEYS PIN STORE COMMAND ARGUMENTS...
// "-" stands for an absent file. Prints what was found; the exit code is 0 for success, 1 for an engine code, which is
// printed.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "engine/functions.h"

namespace {

using Arguments = std::vector<const char*>;

const char* pathOrNull(const char* argument) { return std::strcmp(argument, "-") == 0 ? nullptr : argument; }
uint32_t number(const char* argument) { return static_cast<uint32_t>(std::strtoul(argument, nullptr, 0)); }

/// sign FLAGS DATA EXISTING OUT
int32_t sign(EngineSession session, const Arguments& a) {
  const SignParamRecord param{number(a[0]), nullptr};
  return QUIVO_SignFile(session, &param, pathOrNull(a[1]), pathOrNull(a[2]), a[3]);
}

struct Command {
  const char* name;
  size_t arguments;
  int32_t (*run)(EngineSession, const Arguments&);
};

constexpr Command kCommands[] = {
    {"sign", 4, sign},
};

int report(int32_t code) {
  if (code == 0) return 0;
  char text[512];
  QUIVO_GetErrorText(code, text, sizeof text);
  std::printf("code %08X %s\n", static_cast<unsigned>(code), text);
  return 1;
}

}  // namespace

int main(int count, char** values) {
  if (count < 5) return 2;
  LocalParamRecord local{};
  local.size = sizeof local;
  local.pse = pathOrNull(values[1]) == nullptr ? nullptr : values[1];
  local.pincode = values[2];
  local.localstore = pathOrNull(values[3]) == nullptr ? nullptr : values[3];
  EngineSession session = nullptr;
  const int32_t opened = QUIVO_InitializeEx(kEngineLocalParam, &local, &session);
  if (opened != 0) return report(opened);
  int result = 2;
  for (const Command& command : kCommands) {
    if (std::strcmp(command.name, values[4]) != 0) continue;
    const Arguments arguments(values + 5, values + count);
    if (arguments.size() == command.arguments) result = report(command.run(session, arguments));
  }
  QUIVO_Uninitialize(session);
  return result;
}
