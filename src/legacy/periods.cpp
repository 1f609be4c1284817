#include "legacy/periods.h"

#include <ctime>

#include "legacy/settings.h"
#include "quivocom.h"

namespace legacy {
namespace {

constexpr char kLastCrlUpdate[] = "LastCrlUpdateTime";
constexpr char kLastKeyCheck[] = "LastKeyCheckTime";

uint32_t Deadline(uint32_t last, uint32_t periodInMinutes) { return periodInMinutes * 60u + last; }

void WriteTime(HKEY key, const char* name, DWORD time) {
  RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&time), sizeof(time));
}

}  // namespace

Periods ReadPeriods(HKEY key) {
  Periods periods;
  settings::ReadDword(key, kLastCrlUpdate, periods.lastCrlUpdate);
  settings::ReadDword(key, "CrlUpdatePeriod", periods.crlUpdatePeriod);
  settings::ReadDword(key, kLastKeyCheck, periods.lastKeyCheck);
  settings::ReadDword(key, "KeyCheckPeriod", periods.keyCheckPeriod);
  return periods;
}

uint32_t InitFlags(const Periods& periods, uint32_t now) {
  uint32_t flags = Flag_Init_Noldap;
  if (!(Deadline(periods.lastCrlUpdate, periods.crlUpdatePeriod) < now)) flags |= Flag_Init_Nocrlupdate;
  if (now > Deadline(periods.lastKeyCheck, periods.keyCheckPeriod)) flags |= Flag_Init_Checkexpired;
  return flags;
}

void RememberChecks(HKEY key, uint32_t flags, uint32_t now) {
  if (flags & Flag_Init_Checkexpired) WriteTime(key, kLastKeyCheck, now);
  if (!(flags & Flag_Init_Nocrlupdate)) WriteTime(key, kLastCrlUpdate, now);
}

uint32_t SecondsNow() { return static_cast<uint32_t>(_time64(nullptr)); }

}  // namespace legacy
