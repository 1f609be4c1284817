// The module's values in the registry, as the legacy object and the file-open entry read them.
#pragma once

#include "com/owner.h"

namespace legacy::settings {

/// The key below HKEY_LOCAL_MACHINE (what the administrator sets) and HKEY_CURRENT_USER (what is remembered).
constexpr char kKey[] = "SOFTWARE\\KORVENTA\\tavlcom";

/// Replaces `value` by the REG_DWORD `name`. A value that is absent, of another type or of another size leaves
/// it as it is.
void ReadDword(HKEY key, const char* name, DWORD& value);

}  // namespace legacy::settings
