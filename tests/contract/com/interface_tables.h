// The interfaces and enumerations that scripts rely on.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

struct InterfaceTable {
  std::string name;
  /// "id [get|put|putref] name([flags] type name, ...)"; the arguments of properties have no names here.
  std::vector<std::string> members;
};

struct EnumTable {
  std::string name;
  std::vector<std::pair<std::string, int32_t>> members;
};

extern const std::vector<InterfaceTable> kInterfaces;
/// The members of each in the order of their unsigned values.
extern const std::vector<EnumTable> kEnums;
