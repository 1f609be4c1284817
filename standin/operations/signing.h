// Signing of memory, of files and of streams.
#pragma once

#include <optional>

#include "standin/operations/signature_maker.h"
#include "standin/sessions/session.h"

namespace standin {

/// The signed message or detached signature, in memory of the session. The data may be left out when the existing
/// message has its content; without either, nothing is signed: no bytes.
DataBlob_t SignMemory(Session& session, const SignParamRecord* param, std::optional<ByteView> data,
                      std::optional<ByteView> existing);

/// The same from files to a file; a null path and the device NUL are absent files. Memory does not grow with the files.
void SignFiles(Session& session, const SignParamRecord* param, const char* data, const char* existing, const char* out);

/// Signing of data in pieces. Data is kept only when it becomes part of the message.
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
  size_t matched_ = 0;  ///< of the existing content that the data has repeated so far
};

}  // namespace standin
