// How the engine reads each kind of record: where the pointers are and what they point to.
#pragma once

#include "fake_engine/snapshot.h"

namespace fake {

/// Adds to `record` copies of what the record that starts at `at` points to.
using Follow = void (*)(Snapshot& record, size_t at);

struct Shape {
  size_t size;
  Follow follow;
};

extern const Shape kBlob;
extern const Shape kPlainInteger;
extern const Shape kPointer;
extern const Shape kCertId;
extern const Shape kCertificate;
extern const Shape kSignParam;
extern const Shape kDecryptParam;
extern const Shape kEncryptParam;
extern const Shape kFindParam;
extern const Shape kVerifyParam;
extern const Shape kVerifyCertParam;
extern const Shape kLocalParam;
extern const Shape kRSrvParam;
extern const Shape kFindResult;
extern const Shape kVerifyResult;
extern const Shape kDecryptResult;
extern const Shape kSignedInfoResult;

/// Copies `size` bytes at `address`; an unreadable address gives no bytes and is noted as a violation.
Snapshot CopyBytes(const void* address, size_t size);
Snapshot CopyText(const char* text);
Snapshot CopyRecord(const void* address, const Shape& shape);
/// Every pointer of a record, in the order in which an engine would free them: the innermost first.
void CollectPointers(const Snapshot& record, std::vector<uintptr_t>& pointers);

}  // namespace fake
