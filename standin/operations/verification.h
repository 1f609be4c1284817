// Verification in memory, of files and of streams.
#pragma once

#include <optional>

#include "standin/base/growing_buffer.h"
#include "standin/operations/verifier.h"

namespace standin {

/// Failed signatures are a result, not an exception.
struct Verification {
  int32_t code = 0;
  std::vector<SignerVerdict> verdicts;
};

/// A result record; its certificates have the fields of `info`, or those of PersonRecordOf.
void FillResult(VerifyResultRecord& result, const Verification& verification, const VerifyParamRecord& param,
                Buffers& buffers);

/// If the code is kOk, `out` is the content, or the message without the removed signature.
Verification VerifyMemory(Session& session, const VerifyParamRecord& param, std::optional<ByteView> data,
                          ByteView message, DataBlob_t& out);

/// The same with files; a null path and the device NUL are absent files. `out` is also written if there are remarks.
Verification VerifyFiles(Session& session, const VerifyParamRecord& param, const char* data, const char* message,
                         const char* out);

/// Fails with kNotSigned if the file has no signatures.
uint32_t CountSignatures(const char* message);

/// Verification in pieces. If `start` is a whole detached signature, the pieces are its data; otherwise they continue
/// the message.
class VerifyStream : public Stream {
 public:
  VerifyStream(Session& session, ByteView start);
  void update(ByteView piece);
  Verification finish(const VerifyParamRecord& param, DataBlob_t& out);

 private:
  Session& session_;
  GrowingBuffer content_;
  Verifier verifier_;
};

}  // namespace standin
