// Decryption with an own key: in memory, of files and of streams.
#pragma once

#include "standin/messages/content_cipher.h"
#include "standin/messages/message_reader.h"
#include "standin/sessions/session.h"

namespace standin {

/// Opens one enveloped message whose bytes arrive in pieces.
class Decryptor {
 public:
  /// `id` chooses the own key; a null one stands for any that the message is meant for.
  Decryptor(const Session& session, const CertIdRecord* id, MessageReader::OnContent onPlain);

  /// Fails with kMessageDamaged, kNotEncrypted, kNotARecipient, kAlgorithmUnknown or kDecryptionFailed.
  void feed(ByteView bytes);
  void finish();

  /// The certificate that the message names as its sender's, under the mask. Nothing proves that it is.
  DecryptResultRecord result(uint32_t info, Buffers& buffers) const;

 private:
  void open(const MessageReader::Head& head);
  void decrypt(ByteView piece);
  void endContent();

  const Session& session_;
  const CertIdRecord* id_;
  MessageReader::OnContent on_plain_;
  MessageReader reader_;
  CmsPtr message_;
  std::unique_ptr<ContentCipher> cipher_;
  GrowingBuffer plain_;
  CertPtr sender_;
  bool ended_ = false;
};

DataBlob_t DecryptMemory(Session& session, const DecryptParamRecord& param, ByteView message,
                         DecryptResultRecord& result);
/// Memory does not grow with the file.
void DecryptFiles(Session& session, const DecryptParamRecord& param, const char* in, const char* out,
                  DecryptResultRecord& result);

/// Decryption of a message in pieces; each call gives what could be decrypted. The content is complete with the piece
/// that completes it: the end has nothing more to give.
class DecryptStream : public Stream {
 public:
  DecryptStream(Session& session, const CertIdRecord* id, ByteView start);
  DataBlob_t update(ByteView piece);
  void finish(uint32_t info, DecryptResultRecord& result);

 private:
  Session& session_;
  GrowingBuffer plain_;
  Decryptor decryptor_;
};

}  // namespace standin
