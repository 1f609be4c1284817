#include "legacy/file_open_plan.h"

#include <cstring>

#include "convert/strings.h"

namespace legacy {
namespace {

ProtectedKind KindOf(const char* extension) {
  if (_stricmp(extension, "p7s") == 0) return ProtectedKind::kSigned;
  if (_stricmp(extension, "p7e") == 0) return ProtectedKind::kEncrypted;
  if (_stricmp(extension, "p7a") == 0) return ProtectedKind::kSignedAndEncrypted;
  return ProtectedKind::kOther;
}

}  // namespace

bool PlanOpening(const char* path, OpenPlan& plan) {
  constexpr size_t kLongest = 258;
  plan = {};
  static_assert(kLongest < sizeof(plan.result));
  // A path that is cut loses its extension, and with it the check of what the file contains.
  size_t length = std::strlen(path);
  if (length > kLongest) return false;
  std::memcpy(plan.result, path, length);
  char* dot = std::strrchr(plan.result, '.');
  if (!dot) return false;
  plan.kind = KindOf(dot + 1);
  *dot = '\0';
  return true;
}

bool FolderOf(const char* path, char (&folder)[MAX_PATH]) {
  std::memset(folder, 0, sizeof(folder));
  std::strncpy(folder, path, sizeof(folder) - 1);
  char* backslash = std::strrchr(folder, '\\');
  *(backslash ? backslash : folder) = '\0';
  return backslash != nullptr;
}

SignedCopy SignedCopyOf(const char* result) {
  char folder[MAX_PATH];
  FolderOf(result, folder);
  const char* backslash = std::strrchr(result, '\\');
  const char* name = backslash ? backslash + 1 : result;
  SignedCopy copy;
  convert::Format(copy.folder, sizeof(copy.folder), "%s\\P7S", folder);
  convert::Format(copy.file, sizeof(copy.file), "%s\\%s.p7s", copy.folder, name);
  return copy;
}

}  // namespace legacy
