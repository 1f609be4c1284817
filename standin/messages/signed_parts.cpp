// Taking apart and putting together of signed messages.
#include "standin/messages/signed_parts.h"

#include <algorithm>

#include "standin/base/codes.h"
#include "standin/base/oids.h"

namespace standin {
namespace {

std::vector<Bytes> copiesOf(const std::vector<ByteView>& elements) {
  std::vector<Bytes> copies;
  copies.reserve(elements.size());
  for (const ByteView element : elements) copies.emplace_back(element.begin(), element.end());
  return copies;
}

void addMissing(std::vector<Bytes>& elements, const std::vector<Bytes>& more) {
  for (const Bytes& element : more) {
    if (std::find(elements.begin(), elements.end(), element) == elements.end()) elements.push_back(element);
  }
}

int versionOf(const Bytes& element) {
  const ByteView content = ber::contentOf(element);
  if (content.size() != 1) fail(kMessageDamaged);
  return content[0];
}

}  // namespace

SignedParts SignedParts::of(const MessageReader& reader) {
  const MessageReader::Head& head = reader.head();
  if (head.kind != MessageKind::kSigned) fail(kNotSigned);
  SignedParts parts;
  parts.version = versionOf(head.elements[0]);
  parts.digest_algorithms = digestAlgorithmsOf(head);
  parts.content_type = head.content_type;
  for (const Bytes& element : reader.tail()) {
    switch (element[0]) {
      case ber::kContext0Constructed:
        parts.certificates = copiesOf(ber::childrenOf(element));
        break;
      case ber::kContext1Constructed:
        parts.crls = copiesOf(ber::childrenOf(element));
        break;
      case ber::kSet:
        parts.signers = copiesOf(ber::childrenOf(element));
        ber::sortAsSet(parts.signers);
        break;
      default:
        fail(kMessageDamaged);
    }
  }
  return parts;
}

SignedParts SignedParts::of(CMS_ContentInfo* message) {
  unsigned char* der = nullptr;
  const int length = i2d_CMS_ContentInfo(message, &der);
  if (length <= 0) fail(kInternal);
  const OctetsPtr owner(der);
  MessageReader reader([](const MessageReader::Head&) {}, [](ByteView) {});
  reader.feed({der, static_cast<size_t>(length)});
  reader.finish();
  return of(reader);
}

void SignedParts::merge(const SignedParts& other) {
  version = std::max(version, other.version);
  addMissing(digest_algorithms, other.digest_algorithms);
  addMissing(certificates, other.certificates);
  addMissing(crls, other.crls);
  addMissing(signers, other.signers);
  ber::sortAsSet(signers);
}

Bytes SignedParts::trailer() const {
  Bytes bytes;
  if (!certificates.empty()) append(bytes, ber::encode(ber::kContext0Constructed, ber::joinSorted(certificates)));
  if (!crls.empty()) append(bytes, ber::encode(ber::kContext1Constructed, ber::joinSorted(crls)));
  append(bytes, ber::encode(ber::kSet, ber::joinSorted(signers)));
  return bytes;
}

namespace {

Bytes finishHeader(const SignedParts& parts, ByteView encapsulated, uint64_t behind, size_t trailer_length) {
  const uint8_t version[] = {static_cast<uint8_t>(parts.version)};
  const Bytes start = ber::join({ber::encode(ber::kInteger, version),
                                 ber::encode(ber::kSet, ber::joinSorted(parts.digest_algorithms)), encapsulated});
  const Bytes message = ber::encodeStart(ber::kSequence, start, behind + trailer_length);
  const Bytes explicit_message = ber::encodeStart(ber::kContext0Constructed, message, behind + trailer_length);
  return ber::encodeStart(ber::kSequence, ber::join({kOidSignedData, explicit_message}), behind + trailer_length);
}

}  // namespace

Bytes SignedParts::header(uint64_t content_length, size_t trailer_length) const {
  const Bytes octets = ber::encodeHeader(ber::kOctetString, content_length);
  const Bytes explicit_octets = ber::encodeStart(ber::kContext0Constructed, octets, content_length);
  const Bytes encapsulated =
      ber::encodeStart(ber::kSequence, ber::join({content_type, explicit_octets}), content_length);
  return finishHeader(*this, encapsulated, content_length, trailer_length);
}

Bytes SignedParts::withoutContent() const {
  const Bytes end = trailer();
  return ber::join({finishHeader(*this, ber::encode(ber::kSequence, content_type), 0, end.size()), end});
}

std::vector<Bytes> digestAlgorithmsOf(const MessageReader::Head& head) {
  return copiesOf(ber::childrenOf(head.elements[1]));
}

CmsPtr messageFromDer(ByteView der) {
  const unsigned char* cursor = der.data();
  CmsPtr message(d2i_CMS_ContentInfo(nullptr, &cursor, static_cast<long>(der.size())));
  if (message == nullptr || cursor != der.data() + der.size()) fail(kMessageDamaged);
  return message;
}

}  // namespace standin
