// Verification in memory, of files and of streams.
#pragma once

#include <optional>

#include "standin/base/growing_buffer.h"
#include "standin/operations/verifier.h"

namespace standin {

/// What a verification gives. Signatures that fail are a result, not an exception.
struct Verification {
  int32_t code = 0;
  std::vector<SignerVerdict> verdicts;
};

/// Writes verdicts into a result record; the certificates under the mask of `param`.
void FillResult(VerifyResultRecord& result, const Verification& verification, const VerifyParamRecord& param,
                Buffers& buffers);

/// `out` receives the content of the message, or the message without the removed signature, when the code is kOk.
Verification VerifyMemory(Session& session, const VerifyParamRecord& param, std::optional<ByteView> data,
                          ByteView message, DataBlob_t& out);

/// The same with files; `data` and `out` may be null or empty. The output appears when the signatures are good, with or
/// without remarks, and the message carries its content or keeps signatures.
Verification VerifyFiles(Session& session, const VerifyParamRecord& param, const char* data, const char* message,
                         const char* out);

/// How many signatures the file carries. Fails with kNotSigned when none.
uint32_t CountSignatures(const char* message);

/// Verification of a message or of data in pieces. When what Init was given is a whole signature without content, the
/// pieces are the data that it covers; otherwise they continue the message.
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
