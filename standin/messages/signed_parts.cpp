#include "standin/messages/signed_parts.h"

#include <algorithm>

#include "standin/base/codes.h"
#include "standin/base/oids.h"
#include "standin/certificates/der_objects.h"

namespace standin {
namespace {

std::vector<Bytes> CopiesOf(const std::vector<ByteView>& elements) {
  std::vector<Bytes> copies;
  copies.reserve(elements.size());
  for (const ByteView element : elements) copies.emplace_back(element.begin(), element.end());
  return copies;
}

void AddMissing(std::vector<Bytes>& elements, const std::vector<Bytes>& more) {
  for (const Bytes& element : more) {
    if (std::find(elements.begin(), elements.end(), element) == elements.end()) elements.push_back(element);
  }
}

/// The version is that of the newest form among the elements.
uint8_t VersionOf(const SignedParts& parts) {
  const auto has = [](const std::vector<Bytes>& elements, uint8_t tag) {
    return std::ranges::any_of(elements, [&](const Bytes& element) { return element[0] == tag; });
  };
  const auto namesKey = [](const Bytes& signer) { return ber::ChildrenOf(signer)[1][0] != ber::kSequence; };
  if (has(parts.certificates, ber::kContext3Constructed) || has(parts.crls, ber::kContext1Constructed)) return 5;
  if (has(parts.certificates, ber::kContext2Constructed)) return 4;
  const bool plain = Equal(parts.contentType, kOidData) && !has(parts.certificates, ber::kContext1Constructed);
  return plain && std::ranges::none_of(parts.signers, namesKey) ? 1 : 3;
}

}  // namespace

SignedParts SignedParts::of(const MessageReader& reader) {
  const MessageReader::Head& head = reader.head();
  if (head.kind != MessageKind::kSigned) Fail(kNotSigned);
  SignedParts parts;
  parts.digestAlgorithms = DigestAlgorithmsOf(head);
  parts.contentType = head.contentType;
  auto element = reader.tail().begin();
  const auto end = reader.tail().end();
  const auto take = [&](uint8_t tag) {
    return element != end && (*element)[0] == tag ? CopiesOf(ber::ChildrenOf(*element++)) : std::vector<Bytes>();
  };
  parts.certificates = take(ber::kContext0Constructed);
  parts.crls = take(ber::kContext1Constructed);
  if (element == end || (*element)[0] != ber::kSet || element + 1 != end) Fail(kMessageDamaged);
  parts.signers = take(ber::kSet);
  ber::SortAsSet(parts.signers);
  for (const Bytes& signer : parts.signers) {
    if (ber::ChildrenOf(signer).size() < 2) Fail(kMessageDamaged);
  }
  parts.requireReadable();
  return parts;
}

void SignedParts::requireReadable() const {
  // Hostile messages may have any number of both.
  constexpr size_t kMostSigners = 256;
  constexpr size_t kMostCertificates = 512;
  if (signers.size() > kMostSigners || certificates.size() > kMostCertificates) Fail(kTooLarge);
}

SignedParts SignedParts::of(CMS_ContentInfo* message) { return of(MessageReader::whole(DerOf(message))); }

void SignedParts::merge(const SignedParts& other) {
  AddMissing(digestAlgorithms, other.digestAlgorithms);
  AddMissing(certificates, other.certificates);
  AddMissing(crls, other.crls);
  AddMissing(signers, other.signers);
  ber::SortAsSet(signers);
  requireReadable();
}

Bytes SignedParts::trailer() const {
  Bytes bytes;
  if (!certificates.empty()) Append(bytes, ber::Encode(ber::kContext0Constructed, ber::JoinSorted(certificates)));
  if (!crls.empty()) Append(bytes, ber::Encode(ber::kContext1Constructed, ber::JoinSorted(crls)));
  Append(bytes, ber::Encode(ber::kSet, ber::JoinSorted(signers)));
  return bytes;
}

namespace {

Bytes FinishHeader(const SignedParts& parts, ByteView encapsulated, uint64_t behind, size_t trailerLength) {
  const uint8_t version[] = {VersionOf(parts)};
  const Bytes start = ber::Join({ber::Encode(ber::kInteger, version),
                                 ber::Encode(ber::kSet, ber::JoinSorted(parts.digestAlgorithms)), encapsulated});
  const Bytes message = ber::EncodeStart(ber::kSequence, start, behind + trailerLength);
  const Bytes explicitMessage = ber::EncodeStart(ber::kContext0Constructed, message, behind + trailerLength);
  return ber::EncodeStart(ber::kSequence, ber::Join({kOidSignedData, explicitMessage}), behind + trailerLength);
}

}  // namespace

Bytes SignedParts::header(uint64_t contentLength, size_t trailerLength) const {
  const Bytes octets = ber::EncodeHeader(ber::kOctetString, contentLength);
  const Bytes explicitOctets = ber::EncodeStart(ber::kContext0Constructed, octets, contentLength);
  const Bytes encapsulated = ber::EncodeStart(ber::kSequence, ber::Join({contentType, explicitOctets}), contentLength);
  return FinishHeader(*this, encapsulated, contentLength, trailerLength);
}

Bytes SignedParts::withoutContent() const {
  const Bytes end = trailer();
  return ber::Join({FinishHeader(*this, ber::Encode(ber::kSequence, contentType), 0, end.size()), end});
}

DataBlob_t SignedParts::handOut(Buffers& buffers, std::optional<ByteView> content) const {
  if (!content) return buffers.copyBytes(withoutContent());
  const Bytes end = trailer();
  return buffers.join({header(content->size(), end.size()), *content, end});
}

std::vector<Bytes> DigestAlgorithmsOf(const MessageReader::Head& head) {
  return CopiesOf(ber::ChildrenOf(head.elements[1]));
}

CmsPtr MessageFromDer(ByteView der) {
  CmsPtr message = Decode<CmsPtr>(d2i_CMS_ContentInfo, der, true);
  if (message == nullptr) Fail(kMessageDamaged);
  return message;
}

}  // namespace standin
