// Encryption to recipients: in memory, of files and of streams. The cipher of the content is AES-256, in
// CBC mode, or in GCM mode if the store asks for authenticated messages. For GOST recipients it is Kuznyechik or what
// the store asks for.
#pragma once

#include "standin/messages/content_cipher.h"
#include "standin/messages/enveloped_parts.h"
#include "standin/sessions/session.h"

namespace standin {

/// An envelope with its content key, encrypted for every recipient.
class Envelope {
 public:
  /// Fails as ResolveRecipients does, or with kRecipientUnsuitable if a recipient's key cannot encrypt. The own
  /// certificate that `param` names is the sender's; without one the message names no sender, because some programs
  /// cannot read messages that do.
  Envelope(const Session& session, const EncryptParamRecord& param);

  const EnvelopedParts& parts() const { return parts_; }
  ContentCipher& cipher() { return *cipher_; }
  /// Adds the end of the ciphertext.
  void finish(GrowingBuffer& out);
  /// The bytes behind the ciphertext.
  Bytes trailer() const { return parts_.trailer(cipher_->tag()); }

 private:
  CmsPtr message_;
  std::unique_ptr<ContentCipher> cipher_;
  EnvelopedParts parts_;
};

DataBlob_t EncryptMemory(Session& session, const EncryptParamRecord& param, ByteView data);
/// Memory does not grow with the file.
void EncryptFiles(Session& session, const EncryptParamRecord& param, const char* in, const char* out);

/// Encryption of data in pieces. Each call returns the next part of the message.
class EncryptStream : public Stream {
 public:
  EncryptStream(Session& session, const EncryptParamRecord& param);
  DataBlob_t update(ByteView data);
  DataBlob_t finish();

 private:
  DataBlob_t next(ByteView ciphertext, ByteView end);

  Session& session_;
  Envelope envelope_;
  bool begun_ = false;
};

}  // namespace standin
