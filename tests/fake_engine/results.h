// Writes programmed answers into the module's output records, with memory that the module has to give back. What is
// written by a reply is not written at all if the reply has `writesNothing`.
#pragma once

#include "fake_engine/state.h"

namespace fake {

void WriteBlob(void* blob, const Reply& reply);
/// Copies of a record and of everything that it points to.
void WriteRecord(void* record, const Snapshot& from);
void WriteCertificate(void* record, const Certificate& certificate);
void WriteVerifyResult(void* record, const Reply& reply);
void WriteFindResult(void* record, const Reply& reply);
void WriteDecryptResult(void* record, const Reply& reply);
/// At most `size` bytes, the terminating NUL included.
void WriteText(char* buffer, uint32_t size, const Reply& reply);

}  // namespace fake
