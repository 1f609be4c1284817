// The options of an attack: --NAME=NUMBER on the command line, in addition to those of googletest.
#pragma once

#include <cstdint>

/// The number of an option; `otherwise` if it is not given.
uint64_t Option(const char* name, uint64_t otherwise);
