#include "standin/messages/gost_transport.h"

#include <algorithm>

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

/// 0 if the algorithm is none of GOST R 34.12-2015.
size_t MacLengthOfExport(ByteView encodedAlgorithm) {
  const AlgorithmPtr algorithm = Decode<AlgorithmPtr>(d2i_X509_ALGOR, encodedAlgorithm);
  switch (algorithm == nullptr ? NID_undef : OBJ_obj2nid(algorithm->algorithm)) {
    case NID_magma_kexp15:
      return 8;
    case NID_kuznyechik_kexp15:
      return 16;
    default:
      return 0;
  }
}

bool CanTransport(ByteView recipientInfo, const EVP_PKEY* own) {
  const std::vector<ByteView> info = ber::ChildrenOf(recipientInfo);
  if (info.size() != 4 || info[3][0] != ber::kOctetString) return false;
  const std::vector<ByteView> transport = ber::ChildrenOf(ber::ContentOf(info[3]));
  const size_t macLength = MacLengthOfExport(info[2]);
  return macLength == 0 ? IsSoundOldTransport(transport, own) : IsSoundNewTransport(transport, macLength, own);
}

bool IsSoundOriginator(ByteView element, const EVP_PKEY* own) {
  const std::vector<ByteView> choice = ber::ChildrenOf(element);
  if (element[0] != ber::kContext0Constructed || choice.size() != 1) return false;
  return choice[0][0] != ber::kContext1Constructed || IsOnCurveOf(own, choice[0]);
}

bool CanAgree(ByteView recipientInfo, const EVP_PKEY* own) {
  const std::vector<ByteView> info = ber::ChildrenOf(recipientInfo);
  if (info.size() != 5 || !IsSoundOriginator(info[1], own)) return false;
  const std::vector<ByteView> ukm = ber::ChildrenOf(info[2]);
  const std::vector<ByteView> algorithm = ber::ChildrenOf(info[3]);
  const size_t macLength = MacLengthOfExport(info[3]);
  return info[2][0] == ber::kContext1Constructed && ukm.size() == 1 && IsOctets(ukm[0], kUkm) && macLength != 0 &&
         algorithm.size() == 2 && algorithm[1][0] == ber::kSequence &&
         std::ranges::all_of(ber::ChildrenOf(info[4]), [&](ByteView sealed) {
           const std::vector<ByteView> members = ber::ChildrenOf(sealed);
           return members.size() == 2 && IsOctets(members[1], kKeySize + macLength);
         });
}

/// False also for what cannot be parsed.
bool Holds(bool (*check)(ByteView, const EVP_PKEY*), ByteView recipientInfo, const EVP_PKEY* own) {
  try {
    return check(recipientInfo, own);
  } catch (const EngineError&) {
    return false;
  } catch (const ber::NeedMore&) {
    return false;
  }
}

}  // namespace

bool IsSoundTransport(ByteView recipientInfo, const EVP_PKEY* own) { return Holds(CanTransport, recipientInfo, own); }

bool IsSoundAgreement(ByteView recipientInfo, const EVP_PKEY* own) { return Holds(CanAgree, recipientInfo, own); }

}  // namespace standin
