#include "attack/shared/options.h"

#include <cstdlib>
#include <string>

uint64_t Option(const char* name, uint64_t otherwise) {
  const std::string start = "--" + std::string(name) + "=";
  for (int i = 1; i < __argc; ++i) {
    const std::string argument = __argv[i];
    if (argument.starts_with(start)) return std::strtoull(argument.c_str() + start.size(), nullptr, 10);
  }
  return otherwise;
}
