// What opening a protected file means, decided by its path alone.
#pragma once

#include <windows.h>

namespace legacy {

/// What is done with a file, by its extension in any case: p7s, p7e, p7a. Anything else is left alone.
enum class ProtectedKind { kSigned, kEncrypted, kSignedAndEncrypted, kOther };

struct OpenPlan {
  /// The path without its last extension: where the result goes unless the user decides otherwise.
  char result[MAX_PATH];
  ProtectedKind kind;
};

/// Plans the opening of `path`. False for a path of more than 258 characters, and for one without a ".".
bool PlanOpening(const char* path, OpenPlan& plan);

/// The folder of `path`: the text before its last backslash. False, and an empty text, when it has none.
bool FolderOf(const char* path, char (&folder)[MAX_PATH]);

/// Where the signed copy of a result is kept.
struct SignedCopy {
  /// The folder P7S beside the result.
  char folder[2 * MAX_PATH];
  /// The name of the result with ".p7s" behind it, in that folder.
  char file[3 * MAX_PATH];
};
SignedCopy SignedCopyOf(const char* result);

}  // namespace legacy
