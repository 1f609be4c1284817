#include "standin/operations/encryption.h"

#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/base/gost.h"
#include "standin/certificates/cert_id.h"
#include "standin/operations/recipients.h"

namespace standin {
namespace {

bool IsGostRecipient(const CertPtr& recipient) {
  const EVP_PKEY* key = X509_get0_pubkey(recipient.get());
  return key != nullptr && IsGostKey(key);
}
bool IsOldRecipient(const CertPtr& recipient) {
  const EVP_PKEY* key = X509_get0_pubkey(recipient.get());
  return key != nullptr && EVP_PKEY_get_base_id(key) == NID_id_GostR3410_2001;
}

/// GOST recipients can be given the key of a GOST cipher only, the others also that one. Fails with
/// kRecipientUnsuitable if the cipher cannot be an authenticated one although the store asks for that.
const EVP_CIPHER* CipherFor(const std::vector<CertPtr>& recipients, const Store& store) {
  const bool authenticated = store.hasPolicy("encrypt authenticated");
  if (std::ranges::none_of(recipients, IsGostRecipient)) {
    return authenticated ? EVP_aes_256_gcm() : EVP_aes_256_cbc();
  }
  if (store.hasPolicy("encrypt gost28147") || std::ranges::any_of(recipients, IsOldRecipient)) {
    // Nothing proves its content.
    if (authenticated) Fail(kRecipientUnsuitable);
    return EVP_get_cipherbynid(NID_id_Gost28147_89);
  }
  if (store.hasPolicy("encrypt magma")) {
    return EVP_get_cipherbynid(authenticated ? NID_magma_ctr_acpkm_omac : NID_magma_ctr_acpkm);
  }
  return EVP_get_cipherbynid(authenticated ? NID_kuznyechik_ctr_acpkm_omac : NID_kuznyechik_ctr_acpkm);
}

bool AddRecipient(CMS_ContentInfo* message, X509* recipient, int cipher) {
  const EVP_PKEY* key = X509_get0_pubkey(recipient);
  const bool isGost = key != nullptr && IsGostKey(key);
  CMS_RecipientInfo* added = CMS_add1_recipient_cert(message, recipient, isGost ? CMS_KEY_PARAM : 0);
  if (added == nullptr) return false;
  // The form of the transport follows from the cipher.
  return !isGost || EVP_PKEY_CTX_ctrl(CMS_RecipientInfo_get0_pkey_ctx(added), -1, EVP_PKEY_OP_ENCRYPT,
                                      EVP_PKEY_CTRL_CIPHER, cipher, nullptr) == 1;
}

}  // namespace

Envelope::Envelope(const Session& session, const EncryptParamRecord& param) {
  const std::vector<CertPtr> recipients = ResolveRecipients(session, param);
  constexpr unsigned kFlags = CMS_PARTIAL | CMS_BINARY | CMS_DETACHED;
  const EVP_CIPHER* cipher = CipherFor(recipients, session.store);
  message_.reset(CMS_encrypt(nullptr, nullptr, cipher, kFlags));
  if (message_ == nullptr) Fail(kEncryptionFailed);
  for (const CertPtr& recipient : recipients) {
    if (!AddRecipient(message_.get(), recipient.get(), EVP_CIPHER_get_nid(cipher))) Fail(kRecipientUnsuitable);
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
