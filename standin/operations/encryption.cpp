#include "standin/operations/encryption.h"

#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/operations/recipients.h"

namespace standin {
namespace {

/// The sender's certificate; null if the session has none and the caller names none.
const X509* SenderOf(const Session& session, const EncryptParamRecord& param) {
  if (session.keys.own().empty() && param.mycert == nullptr) return nullptr;
  return session.keys.pick(param.mycert, KeyPurpose::kAny).certificate.get();
}

}  // namespace

Envelope::Envelope(const Session& session, const EncryptParamRecord& param) {
  const std::vector<CertPtr> recipients = ResolveRecipients(session, param);
  constexpr unsigned kFlags = CMS_PARTIAL | CMS_BINARY | CMS_DETACHED;
  message_.reset(CMS_encrypt(nullptr, nullptr, EVP_aes_256_cbc(), kFlags));
  if (message_ == nullptr) Fail(kEncryptionFailed);
  for (const CertPtr& recipient : recipients) {
    if (CMS_add1_recipient_cert(message_.get(), recipient.get(), 0) == nullptr) Fail(kRecipientUnsuitable);
  }
  cipher_ = std::make_unique<ContentCipher>(message_.get());
  parts_ = EnvelopedParts::of(message_.get());
  if (const X509* sender = SenderOf(session, param)) parts_.setSender(sender);
}

DataBlob_t EncryptMemory(Session& session, const EncryptParamRecord& param, ByteView data) {
  Envelope envelope(session, param);
  const Bytes header = envelope.parts().header(envelope.cipher().ciphertextLength(data.size()));
  GrowingBuffer out;
  out.reserve(header.size() + data.size() + 4 * EVP_MAX_BLOCK_LENGTH);
  out.append(header);
  envelope.cipher().update(data, out);
  if (!envelope.cipher().finish(out)) Fail(kEncryptionFailed);
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
  if (!envelope.cipher().finish(piece)) Fail(kEncryptionFailed);
  flush();
  if (written != expected) Fail(kFileChanged);
  output.commit();
}

EncryptStream::EncryptStream(Session& session, const EncryptParamRecord& param)
    : session_(session), envelope_(session, param) {}

DataBlob_t EncryptStream::update(ByteView data) {
  GrowingBuffer ciphertext;
  envelope_.cipher().update(data, ciphertext);
  GrowingBuffer out;
  begin(out);
  addPiece(ciphertext.view(), out);
  return out.handOut(session_.buffers);
}

DataBlob_t EncryptStream::finish() {
  GrowingBuffer ciphertext;
  if (!envelope_.cipher().finish(ciphertext)) Fail(kEncryptionFailed);
  GrowingBuffer out;
  begin(out);
  addPiece(ciphertext.view(), out);
  out.append(EnvelopedParts::streamTrailer());
  return out.handOut(session_.buffers);
}

void EncryptStream::begin(GrowingBuffer& out) {
  if (begun_) return;
  begun_ = true;
  out.append(envelope_.parts().streamHeader());
}

void EncryptStream::addPiece(ByteView ciphertext, GrowingBuffer& out) {
  if (ciphertext.empty()) return;
  out.append(ber::EncodeHeader(ber::kOctetString, ciphertext.size()));
  out.append(ciphertext);
}

}  // namespace standin
