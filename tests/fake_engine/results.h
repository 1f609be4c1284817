// Writes programmed answers into the module's output records, with memory that the module has to give back. What is
// written by a reply is not written at all if the reply says so.
#pragma once

#include "fake_engine/state.h"

namespace fake {

void writeBlob(void* blob, const Reply& reply);
/// Copies of a record and of everything that it points to.
void writeRecord(void* record, const Snapshot& from);
void writeCertificate(void* record, const Certificate& certificate);
void writeVerifyResult(void* record, const Reply& reply);
void writeFindResult(void* record, const Reply& reply);
void writeDecryptResult(void* record, const Reply& reply);
/// At most `size` bytes, the terminating NUL included.
void writeText(char* buffer, uint32_t size, const Reply& reply);

}  // namespace fake
