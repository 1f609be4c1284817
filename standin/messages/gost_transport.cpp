#include "standin/messages/gost_transport.h"

#include "standin/base/codes.h"
#include "standin/messages/ber.h"

namespace standin {
namespace {

constexpr size_t kKeySize = 32;
constexpr size_t kUkmOf28147 = 8;
constexpr size_t kMacOf28147 = 4;
constexpr size_t kUkm = 32;

bool IsOctets(ByteView element, size_t size) {
  return element[0] == ber::kOctetString && ber::ContentOf(element).size() == size;
}

/// An ephemeral key of the same curve as the recipient's. The tag in front of it is not always that of its type.
bool IsOnCurveOf(const EVP_PKEY* own, ByteView encodedKey) {
  const Bytes whole = ber::Encode(ber::kSequence, ber::ContentOf(encodedKey));
  const KeyPtr key = Decode<KeyPtr>(d2i_PUBKEY, whole, true);
  return key != nullptr && EVP_PKEY_get_base_id(key.get()) == EVP_PKEY_get_base_id(own) &&
         EVP_PKEY_parameters_eq(key.get(), own) == 1;
}

/// The form of GOST 28147-89: the key and its code, then the cipher, the ephemeral key and the key material.
bool IsSoundOldTransport(const std::vector<ByteView>& members, const EVP_PKEY* own) {
  if (members.size() != 2 || members[1][0] != ber::kContext0Constructed) return false;
  const std::vector<ByteView> key = ber::ChildrenOf(members[0]);
  const std::vector<ByteView> agreement = ber::ChildrenOf(members[1]);
  return key.size() == 2 && IsOctets(key[0], kKeySize) && IsOctets(key[1], kMacOf28147) && agreement.size() == 3 &&
         agreement[0][0] == ber::kOid && agreement[1][0] == ber::kContext0Constructed &&
         IsOnCurveOf(own, agreement[1]) && IsOctets(agreement[2], kUkmOf28147);
}

/// The form of GOST R 34.12-2015: the key with its code, the ephemeral key and the key material.
bool IsSoundNewTransport(const std::vector<ByteView>& members, size_t macLength, const EVP_PKEY* own) {
  return members.size() == 3 && IsOctets(members[0], kKeySize + macLength) && members[1][0] == ber::kSequence &&
         IsOnCurveOf(own, members[1]) && IsOctets(members[2], kUkm);
}

bool IsSound(ByteView recipientInfo, const EVP_PKEY* own) {
  const std::vector<ByteView> info = ber::ChildrenOf(recipientInfo);
  if (info.size() != 4 || info[3][0] != ber::kOctetString) return false;
  const AlgorithmPtr algorithm = Decode<AlgorithmPtr>(d2i_X509_ALGOR, info[2]);
  if (algorithm == nullptr) return false;
  const std::vector<ByteView> transport = ber::ChildrenOf(ber::ContentOf(info[3]));
  switch (OBJ_obj2nid(algorithm->algorithm)) {
    case NID_magma_kexp15:
      return IsSoundNewTransport(transport, 8, own);
    case NID_kuznyechik_kexp15:
      return IsSoundNewTransport(transport, 16, own);
    default:
      return IsSoundOldTransport(transport, own);
  }
}

}  // namespace

bool IsSoundTransport(ByteView recipientInfo, const EVP_PKEY* own) {
  try {
    return IsSound(recipientInfo, own);
  } catch (const EngineError&) {
    return false;
  } catch (const ber::NeedMore&) {
    return false;
  }
}

}  // namespace standin
