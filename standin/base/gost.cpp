#include "standin/base/gost.h"

#include <algorithm>

namespace standin {
namespace {

using MembersPtr = std::unique_ptr<ASN1_SEQUENCE_ANY, FreeStack<ASN1_TYPE_free>>;

constexpr int kKeys[] = {NID_id_GostR3410_2001, NID_id_GostR3410_2012_256, NID_id_GostR3410_2012_512};
constexpr int kDigests[] = {NID_id_GostR3411_94, NID_id_GostR3411_2012_256, NID_id_GostR3411_2012_512};

constexpr int kIvOf28147 = 8;
/// What is in the parameters of a cipher: an octet string of this length and, in those of GOST 28147-89, an identifier.
struct CipherKind {
  int type;
  int octets;
  bool hasIdentifier;
  size_t macLength = 0;
};
constexpr CipherKind kCiphers[] = {
    {NID_id_Gost28147_89, kIvOf28147, true}, {NID_gost89_cnt, kIvOf28147, true},
    {NID_gost89_cnt_12, kIvOf28147, true},   {NID_gost89_cbc, kIvOf28147, true},
    {NID_magma_ctr_acpkm, 12, false},        {NID_magma_ctr_acpkm_omac, 12, false, 8},
    {NID_kuznyechik_ctr_acpkm, 16, false},   {NID_kuznyechik_ctr_acpkm_omac, 16, false, 16},
};

/// Null for a cipher of another kind.
const CipherKind* KindOf(const X509_ALGOR* cipher) {
  const ASN1_OBJECT* object = nullptr;
  X509_ALGOR_get0(&object, nullptr, nullptr, cipher);
  const auto* kind = std::ranges::find(kCiphers, OBJ_obj2nid(object), &CipherKind::type);
  return kind == std::end(kCiphers) ? nullptr : kind;
}

/// The members of the parameters; null if these are no sequence.
MembersPtr MembersOf(const X509_ALGOR* algorithm) {
  int type = V_ASN1_UNDEF;
  const void* value = nullptr;
  X509_ALGOR_get0(nullptr, &type, &value, algorithm);
  if (type != V_ASN1_SEQUENCE) return nullptr;
  const auto* text = static_cast<const ASN1_STRING*>(value);
  return Decode<MembersPtr>(d2i_ASN1_SEQUENCE_ANY, {text->data, static_cast<size_t>(text->length)}, true);
}

}  // namespace

bool IsGostKey(int type) { return std::ranges::find(kKeys, type) != std::end(kKeys); }

bool IsGostDigest(int type) { return std::ranges::find(kDigests, type) != std::end(kDigests); }

bool NamesUnknownCurve(const X509_ALGOR* key) {
  const MembersPtr members = MembersOf(key);
  if (members == nullptr || sk_ASN1_TYPE_num(members.get()) == 0) return false;
  const ASN1_TYPE* curve = sk_ASN1_TYPE_value(members.get(), 0);
  return curve->type == V_ASN1_OBJECT && OBJ_obj2nid(curve->value.object) == NID_undef;
}

int SectionLengthOf(int cipherType) {
  switch (cipherType) {
    case NID_magma_ctr_acpkm:
    case NID_magma_ctr_acpkm_omac:
      return 8 * 1024;
    case NID_kuznyechik_ctr_acpkm:
    case NID_kuznyechik_ctr_acpkm_omac:
      return 256 * 1024;
    default:
      return 0;
  }
}

size_t MacLengthOf(const X509_ALGOR* cipher) {
  const CipherKind* kind = KindOf(cipher);
  return kind == nullptr ? 0 : kind->macLength;
}

bool HasSoundParameters(const X509_ALGOR* cipher) {
  const CipherKind* kind = KindOf(cipher);
  if (kind == nullptr) return true;
  const MembersPtr members = MembersOf(cipher);
  if (members == nullptr || sk_ASN1_TYPE_num(members.get()) != (kind->hasIdentifier ? 2 : 1)) return false;
  const ASN1_TYPE* octets = sk_ASN1_TYPE_value(members.get(), 0);
  return octets->type == V_ASN1_OCTET_STRING && octets->value.octet_string->length == kind->octets &&
         (!kind->hasIdentifier || sk_ASN1_TYPE_value(members.get(), 1)->type == V_ASN1_OBJECT);
}

}  // namespace standin
