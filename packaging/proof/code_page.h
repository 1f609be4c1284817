// The code page of the programs that the kit starts. Texts of the module are those of the code page 1251.
#pragma once

#include <string>

namespace proof {

constexpr unsigned kNeededCodePage = 1251;

/// True if a program of the kit runs in the needed code page: it is the machine's, or Windows (from build 20348 on)
/// takes it from a manifest, which is then written beside the program.
bool GiveCodePage(const std::wstring& kit, const std::wstring& program);

}  // namespace proof
