#include "standin/operations/decryption.h"

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/base/gost.h"
#include "standin/certificates/cert_id.h"
#include "standin/certificates/cert_record.h"
#include "standin/certificates/index_terms.h"
#include "standin/certificates/names.h"
#include "standin/messages/gost_transport.h"
#include "standin/messages/signed_parts.h"

namespace standin {
namespace {

/// What a tag, whose length the sender chooses, must have at least.
constexpr size_t kShortestTag = 12;

}  // namespace

Decryptor::Decryptor(const Session& session, const CertIdRecord* id, MessageReader::OnContent onPlain)
    : session_(session),
      id_(id),
      on_plain_(std::move(onPlain)),
      reader_([this](const MessageReader::Head& head) { open(head); }, [this](ByteView piece) { decrypt(piece); }) {
  if (session.keys.own().empty()) Fail(kOwnCertificateNotFound);
  // A named key must exist, even if the message has no use for it.
  if (NamesCertificate(id)) session.keys.pick(id, KeyPurpose::kDecryption);
}

void Decryptor::feed(ByteView bytes) {
  reader_.feed(bytes);
  // The tag of an authenticated content stands behind it.
  if (parts_.proof != Proof::kNone ? reader_.tryFinish() : reader_.contentEnded()) endContent();
}

void Decryptor::finish() {
  reader_.finish();
  endContent();
  // Attributes that nothing proves may stand behind the content.
  const size_t tags = parts_.proof == Proof::kTag ? 1 : 0;
  const uint8_t attributes = tags == 1 ? ber::kContext2Constructed : ber::kContext1Constructed;
  const std::vector<Bytes>& tail = reader_.tail();
  if (tail.size() > tags + 1 || (tail.size() > tags && tail[tags][0] != attributes)) Fail(kMessageDamaged);
}

DecryptResultRecord Decryptor::result(uint32_t info, Buffers& buffers) const {
  if (sender_ == nullptr) return {};
  return {kOk, PersonRecordOf(sender_.get(), info, buffers)};
}

void Decryptor::open(const MessageReader::Head& head) {
  parts_ = EnvelopedParts::of(head);
  if (!head.hasContent) Fail(kMessageDamaged);
  message_ = MessageFromDer(parts_.withoutContent());
  STACK_OF(CMS_RecipientInfo)* entries = CMS_get0_RecipientInfos(message_.get());
  const std::vector<ByteView> encoded = ber::ChildrenOf(parts_.recipients);
  const size_t count = std::min(encoded.size(), static_cast<size_t>(sk_CMS_RecipientInfo_num(entries)));
  const bool opened = std::ranges::any_of(session_.keys.own(), [&](const OwnKey& own) {
    if (NamesCertificate(id_) && !Matches(own.certificate.get(), *id_)) return false;
    size_t i = 0;
    const auto entry = [&] { return sk_CMS_RecipientInfo_value(entries, static_cast<int>(i)); };
    while (i < count && !openFor(entry(), encoded[i], own)) ++i;
    return i < count;
  });
  // The caller's identifier may be gone at the next call.
  id_ = nullptr;
  if (!opened) Fail(kNotARecipient);
  cipher_ = std::make_unique<ContentCipher>(message_.get(), kAlgorithmUnknown);
  const CertStackPtr stated(CMS_get1_certs(message_.get()));
  if (stated != nullptr && sk_X509_num(stated.get()) > 0) sender_ = Share(sk_X509_value(stated.get(), 0));
}

bool Decryptor::openFor(CMS_RecipientInfo* entry, ByteView encodedEntry, const OwnKey& own) const {
  EVP_PKEY* key = own.key.get();
  switch (CMS_RecipientInfo_type(entry)) {
    case CMS_RECIPINFO_TRANS:
      if (CMS_RecipientInfo_ktri_cert_cmp(entry, own.certificate.get()) != 0) return false;
      if (IsGostKey(key) && !IsSoundTransport(encodedEntry, key)) Fail(kDecryptionFailed);
      EVP_PKEY_up_ref(key);
      CMS_RecipientInfo_set0_pkey(entry, key);
      if (CMS_RecipientInfo_decrypt(message_.get(), entry) != 1) Fail(kDecryptionFailed);
      return true;
    case CMS_RECIPINFO_AGREE: {
      STACK_OF(CMS_RecipientEncryptedKey)* keys = CMS_RecipientInfo_kari_get0_reks(entry);
      for (int i = 0; i < sk_CMS_RecipientEncryptedKey_num(keys); ++i) {
        CMS_RecipientEncryptedKey* sealed = sk_CMS_RecipientEncryptedKey_value(keys, i);
        if (CMS_RecipientEncryptedKey_cert_cmp(sealed, own.certificate.get()) != 0) continue;
        const bool opened = prepareAgreement(entry, encodedEntry, key) &&
                            CMS_RecipientInfo_kari_decrypt(message_.get(), entry, sealed) == 1;
        if (!opened) Fail(kDecryptionFailed);
        return true;
      }
      return false;
    }
    default:
      return false;
  }
}

bool Decryptor::prepareAgreement(CMS_RecipientInfo* entry, ByteView encodedEntry, EVP_PKEY* key) const {
  if (!IsGostKey(key)) return CMS_RecipientInfo_kari_set0_pkey(entry, key) == 1;
  if (!IsSoundAgreement(encodedEntry, key)) return false;
  ASN1_BIT_STRING* stated = nullptr;
  CMS_RecipientInfo_kari_get0_orig_id(entry, nullptr, &stated, nullptr, nullptr, nullptr);
  const CertPtr originator = stated == nullptr ? originatorOf(entry, key) : nullptr;
  if (stated == nullptr && originator == nullptr) Fail(kSignerUnknown);
  return CMS_RecipientInfo_kari_set0_pkey_and_peer(entry, key, originator.get()) == 1;
}

CertPtr Decryptor::originatorOf(CMS_RecipientInfo* entry, const EVP_PKEY* key) const {
  ASN1_OCTET_STRING* keyId = nullptr;
  ASN1_INTEGER* serial = nullptr;
  CMS_RecipientInfo_kari_get0_orig_id(entry, nullptr, nullptr, &keyId, nullptr, &serial);
  if (keyId == nullptr && serial == nullptr) return nullptr;
  const Term term = serial != nullptr ? SerialTerm(SerialText(serial))
                                      : KeyIdTerm(HexOf({keyId->data, static_cast<size_t>(keyId->length)}));
  for (CertPtr& known : session_.knownCertificates(term)) {
    const EVP_PKEY* theirs = X509_get0_pubkey(known.get());
    const bool fits = CMS_RecipientInfo_kari_orig_id_cmp(entry, known.get()) == 0 && theirs != nullptr &&
                      EVP_PKEY_get_base_id(theirs) == EVP_PKEY_get_base_id(key) &&
                      EVP_PKEY_parameters_eq(theirs, key) == 1;
    if (fits) return std::move(known);
  }
  return nullptr;
}

void Decryptor::decrypt(ByteView piece) {
  cipher_->update(piece, plain_);
  on_plain_(plain_.view());
  plain_.clear();
}

void Decryptor::endContent() {
  if (ended_) return;
  if (parts_.proof != Proof::kNone) {
    if (reader_.tail().empty()) Fail(kMessageDamaged);
    const Bytes& proof = reader_.tail().front();
    // Attributes that the tag proves too would have to be known before the content.
    if (parts_.proof == Proof::kTag && proof[0] == ber::kContext1Constructed) Fail(kNotSupported);
    const ByteView tag = parts_.tagIn(proof);
    // A short tag is easy to guess.
    const bool plausible =
        tag.size() == parts_.tagLength && (parts_.proof == Proof::kMac || tag.size() >= kShortestTag);
    if (!plausible || !cipher_->expectTag(tag)) Fail(kDecryptionFailed);
  }
  if (!cipher_->finish(plain_)) Fail(kDecryptionFailed);
  ended_ = true;
  on_plain_(plain_.view());
  plain_.clear();
}

DataBlob_t DecryptMemory(Session& session, const DecryptParamRecord& param, ByteView message,
                         DecryptResultRecord& result) {
  GrowingBuffer plain;
  plain.reserve(message.size());
  Decryptor decryptor(session, param.mycert, [&](ByteView piece) { plain.append(piece); });
  decryptor.feed(message);
  decryptor.finish();
  const DataBlob_t out = plain.handOut(session.buffers);
  result = decryptor.result(param.info, session.buffers);
  return out;
}

void DecryptFiles(Session& session, const DecryptParamRecord& param, const char* in, const char* out,
                  DecryptResultRecord& result) {
  InputFile input(in);
  OutputFile output(out);
  Decryptor decryptor(session, param.mycert, [&](ByteView piece) { output.write(piece); });
  input.forEachPiece([&](ByteView piece) { decryptor.feed(piece); });
  decryptor.finish();
  output.commit();
  result = decryptor.result(param.info, session.buffers);
}

DecryptStream::DecryptStream(Session& session, const CertIdRecord* id, ByteView start)
    : session_(session), decryptor_(session, id, [this](ByteView piece) { plain_.append(piece); }) {
  decryptor_.feed(start);
}

DataBlob_t DecryptStream::update(ByteView piece) {
  decryptor_.feed(piece);
  // What is not authenticated yet stays here.
  return decryptor_.isProved() ? plain_.handOut(session_.buffers) : DataBlob_t{};
}

void DecryptStream::finish(uint32_t info, DecryptResultRecord& result) {
  decryptor_.finish();
  // No Update has fetched the content of the first piece: the caller would lose it.
  if (!plain_.view().empty()) Fail(kStreamOrder);
  result = decryptor_.result(info, session_.buffers);
}

}  // namespace standin
