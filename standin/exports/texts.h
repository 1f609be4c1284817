// The Russian texts of result codes.
#pragma once

#include <cstdint>

#include "standin/sessions/store.h"

namespace standin {

/// Writes the text of `code` in Windows-1251, NUL-terminated and cut to `size` bytes. Codes that callers have re-based
/// or given a sign are recognised; an unknown one has a general text with its number.
void WriteErrorText(int32_t code, char* buffer, uint32_t size);

/// Writes what a reload of the revocation lists found, in the same way.
void WriteCrlReport(const Store::CrlReload& reload, char* buffer, uint32_t size);

}  // namespace standin
