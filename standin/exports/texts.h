// The Russian texts of result codes.
#pragma once

#include <cstdint>

#include "standin/sessions/store.h"

namespace standin {

/// Writes the text of `code` in Windows-1251, NUL-terminated and cut to `size` bytes. Recognises codes that callers
/// have re-based or made negative; an unknown code has a general text with its number.
void WriteErrorText(int32_t code, char* buffer, uint32_t size);

/// Describes a reload of the revocation lists, in the same form.
void WriteCrlReport(const Store::CrlReload& reload, char* buffer, uint32_t size);

}  // namespace standin
