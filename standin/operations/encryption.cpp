#include "standin/operations/encryption.h"

#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/certificates/cert_id.h"
#include "standin/operations/recipients.h"

namespace standin {
Envelope::Envelope(const Session& session, const EncryptParamRecord& param) {
  const std::vector<CertPtr> recipients = ResolveRecipients(session, param);
  constexpr unsigned kFlags = CMS_PARTIAL | CMS_BINARY | CMS_DETACHED;
  const EVP_CIPHER* cipher = session.store.hasPolicy("encrypt authenticated") ? EVP_aes_256_gcm() : EVP_aes_256_cbc();
  message_.reset(CMS_encrypt(nullptr, nullptr, cipher, kFlags));
  if (message_ == nullptr) Fail(kEncryptionFailed);
  for (const CertPtr& recipient : recipients) {
    if (CMS_add1_recipient_cert(message_.get(), recipient.get(), 0) == nullptr) Fail(kRecipientUnsuitable);
  }
  cipher_ = std::make_unique<ContentCipher>(message_.get(), kRecipientUnsuitable);
  parts_ = EnvelopedParts::of(message_.get());
  if (NamesCertificate(param.mycert)) {
    parts_.setSender(session.keys.pick(param.mycert, KeyPurpose::kAny).certificate.get());
  }
}

void Envelope::finish(GrowingBuffer& out) {
  if (!cipher_->finish(out)) Fail(kEncryptionFailed);
}

DataBlob_t EncryptMemory(Session& session, const EncryptParamRecord& param, ByteView data) {
  Envelope envelope(session, param);
  const Bytes header = envelope.parts().header(envelope.cipher().ciphertextLength(data.size()));
  GrowingBuffer out;
  out.reserve(header.size() + data.size() + 4 * EVP_MAX_BLOCK_LENGTH);
  out.append(header);
  envelope.cipher().update(data, out);
  envelope.finish(out);
  out.append(envelope.trailer());
  return out.handOut(session.buffers);
}

void EncryptFiles(Session& session, const EncryptParamRecord& param, const char* in, const char* out) {
  Envelope envelope(session, param);
  InputFile input(in);
  OutputFile output(out);
  const uint64_t expected = envelope.cipher().ciphertextLength(input.size());
  output.write(envelope.parts().header(expected));
  uint64_t written = 0;
  GrowingBuffer piece;
  const auto flush = [&] {
    written += piece.view().size();
    output.write(piece.view());
    piece.clear();
  };
  input.forEachPiece([&](ByteView data) {
    envelope.cipher().update(data, piece);
    flush();
  });
  envelope.finish(piece);
  flush();
  if (written != expected) Fail(kFileChanged);
  output.write(envelope.trailer());
  output.commit();
}

EncryptStream::EncryptStream(Session& session, const EncryptParamRecord& param)
    : session_(session), envelope_(session, param) {}

DataBlob_t EncryptStream::update(ByteView data) {
  GrowingBuffer ciphertext;
  envelope_.cipher().update(data, ciphertext);
  return next(ciphertext.view(), {});
}

DataBlob_t EncryptStream::finish() {
  GrowingBuffer ciphertext;
  envelope_.finish(ciphertext);
  return next(ciphertext.view(), envelope_.parts().streamTrailer(envelope_.cipher().tag()));
}

DataBlob_t EncryptStream::next(ByteView ciphertext, ByteView end) {
  const Bytes header = begun_ ? Bytes() : envelope_.parts().streamHeader();
  begun_ = true;
  const Bytes octets = ciphertext.empty() ? Bytes() : ber::EncodeHeader(ber::kOctetString, ciphertext.size());
  return session_.buffers.join({header, octets, ciphertext, end});
}

}  // namespace standin
