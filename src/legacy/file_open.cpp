#include "legacy/file_open.h"

void OpenProtectedFile(const char*) {}
