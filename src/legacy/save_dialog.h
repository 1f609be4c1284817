// The dialog in which the user says where the result of opening a protected file is saved.
#pragma once

#include <windows.h>

namespace legacy {

struct SaveRequest {
  /// Proposed and, after a success, chosen by the user.
  char (&path)[MAX_PATH];
  /// Where the dialog starts; may be empty.
  const char* startFolder;
  /// Whether the user may ask for the signed copy to be kept.
  bool offersSignedCopy;
  /// What the user answered to that.
  bool keepsSignedCopy = false;
};

/// Shows the dialog over the active window. False when the user cancelled it.
bool AskWhereToSave(SaveRequest& request);

}  // namespace legacy
