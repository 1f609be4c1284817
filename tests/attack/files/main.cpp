// Attacks on files: attack_files ATTACK MATERIAL SCRATCH SEED COUNT [CASE]
// MATERIAL is the folder of the stand-in's test material, SCRATCH one for files, which it empties. CASE is the text of
// a case that is to run alone, as a failure prints it.
#include <cstdlib>

#include "attacks.h"

namespace {

std::wstring Wide(const char* text) { return std::wstring(text, text + std::string(text).size()); }

}  // namespace

int main(int count, char** values) {
  if (count < 6) return 2;
  const std::string attack = values[1];
  const Folders folders{Wide(values[2]), Wide(values[3])};
  if (attack == "child") return RunChild(folders, std::vector<std::string>(values + 4, values + count));
  const auto seed = static_cast<unsigned>(std::strtoul(values[4], nullptr, 0));
  const auto times = static_cast<unsigned>(std::strtoul(values[5], nullptr, 0));
  Cases cases(attack, seed, count > 6 ? values[6] : "");
  if (attack == "paths") AttackPaths(cases, folders, times > 1);
  if (attack == "denied") AttackDenied(cases, folders);
  if (attack == "faults") AttackFaults(cases, folders);
  if (attack == "changes") AttackChanges(cases, folders, times > 1);
  // Of the processes that end, two of three do so by themselves at a chosen point.
  if (attack == "kills") AttackKills(cases, folders, seed, times * 2 / 3, times - times * 2 / 3);
  for (unsigned i = 0; attack == "crowd" && i < times; ++i) AttackCrowd(cases, folders);
  return cases.finish();
}
