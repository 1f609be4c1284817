#include "legacy/settings.h"

void legacy::settings::ReadDword(HKEY key, const char* name, DWORD& value) {
  DWORD type = REG_NONE;
  DWORD found = 0;
  DWORD size = sizeof(found);
  if (RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&found), &size) != ERROR_SUCCESS) return;
  if (type == REG_DWORD && size == sizeof(found)) value = found;
}
