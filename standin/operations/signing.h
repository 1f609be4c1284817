// Signing in memory, of files and of streams.
#pragma once

#include <optional>

#include "standin/operations/signature_maker.h"
#include "standin/sessions/session.h"

namespace standin {

/// The signed message or detached signature, in memory of the session. Without data, the content of the existing
/// message is signed; without both, no bytes.
DataBlob_t SignMemory(Session& session, const SignParamRecord* param, std::optional<ByteView> data,
                      std::optional<ByteView> existing);

/// The same with files; a null path and the device NUL are absent files. Memory does not grow with the files.
void SignFiles(Session& session, const SignParamRecord* param, const char* data, const char* existing, const char* out);

/// Signing of data in pieces. Keeps the data only if it becomes part of the message.
class SignStream : public Stream {
 public:
  SignStream(Session& session, const SignParamRecord* param, std::optional<ByteView> existing);
  void update(ByteView data);
  DataBlob_t finish();

 private:
  Session& session_;
  SignatureMaker maker_;
  std::optional<Bytes> existing_content_;
  Bytes content_;
  size_t matched_ = 0;  ///< bytes of the existing content that the data has repeated
};

}  // namespace standin
