// What the shell's file association runs: opens a protected file by its extension.
#pragma once

namespace legacy {

/// Opens the protected file at `path`, the whole command line, in the system code page. Reports
/// to the user in windows; what cannot be opened is passed over in silence.
void OpenProtectedFile(const char* path);

}  // namespace legacy
