// The families of checks. Each adds its rows to the report.
#pragma once

#include "kit.h"

namespace check {

/// Every function is exported.
void CheckExports(Kit& kit);
/// Opening and closing; several sessions; the control code.
void CheckSessions(Kit& kit);
/// Sessions, paths and bytes that are not there.
void CheckNulls(Kit& kit);
/// Texts of codes, Base64.
void CheckTexts(Kit& kit);
/// What the engine hands out goes back, once, and is gone.
void CheckMemory(Kit& kit);
/// The members of the records that the engine fills.
void CheckRecords(Kit& kit);
/// Signatures, envelopes and hashes in memory.
void CheckMessages(Kit& kit);
/// The same in files.
void CheckFiles(Kit& kit);
/// The same in pieces.
void CheckStreams(Kit& kit);
/// Failures have codes, and hand out nothing.
void CheckCodes(Kit& kit);
/// Search, additions, export, import, requests.
void CheckStore(Kit& kit);

}  // namespace check
