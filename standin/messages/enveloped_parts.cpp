#include "standin/messages/enveloped_parts.h"

#include "standin/base/codes.h"
#include "standin/base/gost.h"
#include "standin/base/oids.h"
#include "standin/certificates/der_objects.h"

namespace standin {
namespace {

/// Of a message with an originator or with unprotected attributes.
constexpr uint8_t kVersionWithMore[] = {2};
constexpr uint8_t kNoTag[16] = {};

Bytes WrapIndefinite(uint8_t tag, ByteView start) {
  const uint8_t header[] = {tag, 0x80};
  return ber::Join({header, start});
}

}  // namespace

EnvelopedParts EnvelopedParts::of(const MessageReader::Head& head) {
  constexpr size_t kMostRecipients = 4096;
  if (!head.enveloped()) Fail(kNotEncrypted);
  EnvelopedParts parts;
  parts.version = head.elements.front();
  if (head.elements.size() == 3) parts.originator = head.elements[1];
  parts.recipients = head.elements.back();
  if (ber::ChildrenOf(parts.recipients).size() > kMostRecipients) Fail(kTooLarge);
  parts.contentType = head.contentType;
  parts.contentCipher = head.contentCipher;
  const AlgorithmPtr cipher = Decode<AlgorithmPtr>(d2i_X509_ALGOR, parts.contentCipher);
  if (cipher == nullptr) Fail(kMessageDamaged);
  if (!HasSoundParameters(cipher.get())) Fail(kAlgorithmUnknown);
  if (head.kind == MessageKind::kAuthEnveloped) {
    parts.proof = Proof::kTag;
    parts.readTagLength();
  } else if (MacLengthOf(cipher.get()) != 0) {
    parts.proof = Proof::kMac;
    parts.tagLength = MacLengthOf(cipher.get());
    parts.version = ber::Encode(ber::kInteger, kVersionWithMore);
  }
  return parts;
}

void EnvelopedParts::readTagLength() {
  constexpr uint8_t kDefaultLength[] = {ber::kInteger, 1, 12};
  const std::vector<ByteView> members = ber::ChildrenOf(contentCipher);
  std::vector<ByteView> parameters = members.size() == 2 ? ber::ChildrenOf(members[1]) : members;
  if (members.size() != 2 || parameters.empty() || parameters.size() > 2) Fail(kAlgorithmUnknown);
  if (parameters.size() == 1) parameters.emplace_back(kDefaultLength);
  const ByteView length = ber::ContentOf(parameters[1]);
  tagLength = length.size() == 1 ? length[0] : 0;
  // libcrypto does not know that the length may be left out.
  const Bytes complete = ber::Encode(ber::kSequence, ber::Join({parameters[0], parameters[1]}));
  contentCipher = ber::Encode(ber::kSequence, ber::Join({members[0], complete}));
}

EnvelopedParts EnvelopedParts::of(CMS_ContentInfo* message) { return of(MessageReader::whole(DerOf(message)).head()); }

void EnvelopedParts::setSender(const X509* certificate) {
  if (proof != Proof::kTag) version = ber::Encode(ber::kInteger, kVersionWithMore);
  originator = ber::Encode(ber::kContext0Constructed, ber::Encode(ber::kContext0Constructed, DerOf(certificate)));
}

ByteView EnvelopedParts::kindOid() const {
  return proof == Proof::kTag ? ByteView(kOidAuthEnvelopedData) : ByteView(kOidEnvelopedData);
}

Bytes EnvelopedParts::finishHeader(ByteView messageVersion, ByteView encryptedInfo, uint64_t behind) const {
  const Bytes start = ber::Join({messageVersion, originator, recipients, encryptedInfo});
  const Bytes message = ber::EncodeStart(ber::kSequence, start, behind);
  const Bytes explicitMessage = ber::EncodeStart(ber::kContext0Constructed, message, behind);
  return ber::EncodeStart(ber::kSequence, ber::Join({kindOid(), explicitMessage}), behind);
}

Bytes EnvelopedParts::withoutContent() const {
  const Bytes end = trailer({});
  const Bytes info = ber::Encode(ber::kSequence, ber::Join({contentType, contentCipher}));
  return ber::Join({finishHeader(ber::Encode(ber::kInteger, kVersionWithMore), info, end.size()), end});
}

Bytes EnvelopedParts::header(uint64_t ciphertextLength) const {
  const Bytes octets = ber::EncodeHeader(ber::kContext0, ciphertextLength);
  const Bytes info =
      ber::EncodeStart(ber::kSequence, ber::Join({contentType, contentCipher, octets}), ciphertextLength);
  return finishHeader(version, info, ciphertextLength + trailer({}).size());
}

Bytes EnvelopedParts::trailer(ByteView tag) const {
  switch (proof) {
    case Proof::kTag:
      return ber::Encode(ber::kOctetString, tag.empty() ? ByteView(kNoTag) : tag);
    case Proof::kMac:
      return attributesWith(tag.empty() ? ByteView(kNoTag).first(tagLength) : tag);
    default:
      return {};
  }
}

Bytes EnvelopedParts::attributesWith(ByteView mac) const {
  const Bytes values = ber::Encode(ber::kSet, ber::Encode(ber::kOctetString, mac));
  const Bytes attribute = ber::Encode(ber::kSequence, ber::Join({kOidContentMac, values}));
  return ber::Encode(ber::kContext1Constructed, attribute);
}

ByteView EnvelopedParts::tagIn(ByteView element) const {
  if (proof == Proof::kTag) {
    if (element[0] != ber::kOctetString) Fail(kMessageDamaged);
    return ber::ContentOf(element);
  }
  if (element[0] != ber::kContext1Constructed) Fail(kMessageDamaged);
  ByteView found;
  for (const ByteView attribute : ber::ChildrenOf(element)) {
    const std::vector<ByteView> members = ber::ChildrenOf(attribute);
    if (members.empty() || !Equal(members[0], kOidContentMac)) continue;
    const std::vector<ByteView> values = members.size() == 2 ? ber::ChildrenOf(members[1]) : members;
    if (!found.empty() || values.size() != 1 || values[0][0] != ber::kOctetString) Fail(kMessageDamaged);
    found = ber::ContentOf(values[0]);
  }
  if (found.empty()) Fail(kMessageDamaged);
  return found;
}

Bytes EnvelopedParts::streamHeader() const {
  const Bytes octets = WrapIndefinite(ber::kContext0Constructed, {});
  const Bytes info = WrapIndefinite(ber::kSequence, ber::Join({contentType, contentCipher, octets}));
  const Bytes message = WrapIndefinite(ber::kSequence, ber::Join({version, originator, recipients, info}));
  return WrapIndefinite(ber::kSequence, ber::Join({kindOid(), WrapIndefinite(ber::kContext0Constructed, message)}));
}

Bytes EnvelopedParts::streamTrailer(ByteView tag) const {
  // The end-of-contents marks of the five elements that streamHeader opens; two of them end before the tag.
  return ber::Join({Bytes(2 * 2), trailer(tag), Bytes(3 * 2)});
}

}  // namespace standin
