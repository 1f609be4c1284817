// Decryption with an own key: in memory, of files and of streams.
#pragma once

#include "standin/messages/content_cipher.h"
#include "standin/messages/enveloped_parts.h"
#include "standin/sessions/session.h"

namespace standin {

/// Opens one enveloped message whose bytes arrive in pieces.
class Decryptor {
 public:
  /// `id` names the own key; if it names none, any recipient's key will do.
  Decryptor(const Session& session, const CertIdRecord* id, MessageReader::OnContent onPlain);

  /// Fails with kMessageDamaged, kNotEncrypted, kNotARecipient, kAlgorithmUnknown or kDecryptionFailed.
  void feed(ByteView bytes);
  void finish();

  /// False while the content's tag is awaited.
  bool isProved() const { return ended_ || parts_.proof == Proof::kNone; }
  /// The certificate that the message states as its sender's, with the fields of `info`. It is not proved.
  DecryptResultRecord result(uint32_t info, Buffers& buffers) const;

 private:
  void open(const MessageReader::Head& head);
  /// Decrypts the content key with the own key; false if this entry is for another recipient.
  bool openFor(CMS_RecipientInfo* entry, ByteView encodedEntry, const OwnKey& own) const;
  bool prepareAgreement(CMS_RecipientInfo* entry, ByteView encodedEntry, EVP_PKEY* key) const;
  /// The certificate of the sender that the entry names, if it has a GOST key of the same curve.
  CertPtr originatorOf(CMS_RecipientInfo* entry, const EVP_PKEY* key) const;
  void decrypt(ByteView piece);
  void endContent();

  const Session& session_;
  const CertIdRecord* id_;
  MessageReader::OnContent on_plain_;
  MessageReader reader_;
  EnvelopedParts parts_;
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

/// Decryption of a message in pieces. Each update returns the content of its piece; finish returns none. Authenticated
/// content is returned by the update that completes the message.
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
