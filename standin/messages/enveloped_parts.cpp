#include "standin/messages/enveloped_parts.h"

#include "standin/base/codes.h"
#include "standin/base/oids.h"
#include "standin/certificates/der_objects.h"

namespace standin {
namespace {

Bytes WrapIndefinite(uint8_t tag, ByteView start) {
  Bytes bytes = {tag, 0x80};
  Append(bytes, start);
  return bytes;
}

Bytes FinishHeader(const Bytes& before, ByteView encryptedInfo, uint64_t behind) {
  const Bytes message = ber::EncodeStart(ber::kSequence, ber::Join({before, encryptedInfo}), behind);
  const Bytes explicitMessage = ber::EncodeStart(ber::kContext0Constructed, message, behind);
  return ber::EncodeStart(ber::kSequence, ber::Join({kOidEnvelopedData, explicitMessage}), behind);
}

}  // namespace

EnvelopedParts EnvelopedParts::of(const MessageReader::Head& head) {
  if (head.kind != MessageKind::kEnveloped) Fail(kNotEncrypted);
  EnvelopedParts parts;
  parts.version = head.elements.front();
  if (head.elements.size() == 3) parts.originator = head.elements[1];
  parts.recipients = head.elements.back();
  parts.contentType = head.contentType;
  parts.contentCipher = head.contentCipher;
  return parts;
}

EnvelopedParts EnvelopedParts::of(CMS_ContentInfo* message) { return of(MessageReader::whole(DerOf(message)).head()); }

void EnvelopedParts::setSender(const X509* certificate) {
  constexpr uint8_t kVersionWithOriginator[] = {2};
  version = ber::Encode(ber::kInteger, kVersionWithOriginator);
  originator = ber::Encode(ber::kContext0Constructed, ber::Encode(ber::kContext0Constructed, DerOf(certificate)));
}

Bytes EnvelopedParts::beforeContent() const { return ber::Join({version, originator, recipients}); }

Bytes EnvelopedParts::withoutContent() const {
  return FinishHeader(beforeContent(), ber::Encode(ber::kSequence, ber::Join({contentType, contentCipher})), 0);
}

Bytes EnvelopedParts::header(uint64_t ciphertextLength) const {
  const Bytes octets = ber::EncodeHeader(ber::kContext0, ciphertextLength);
  const Bytes info =
      ber::EncodeStart(ber::kSequence, ber::Join({contentType, contentCipher, octets}), ciphertextLength);
  return FinishHeader(beforeContent(), info, ciphertextLength);
}

Bytes EnvelopedParts::streamHeader() const {
  const Bytes octets = WrapIndefinite(ber::kContext0Constructed, {});
  const Bytes info = WrapIndefinite(ber::kSequence, ber::Join({contentType, contentCipher, octets}));
  const Bytes message = WrapIndefinite(ber::kSequence, ber::Join({beforeContent(), info}));
  return WrapIndefinite(ber::kSequence,
                        ber::Join({kOidEnvelopedData, WrapIndefinite(ber::kContext0Constructed, message)}));
}

Bytes EnvelopedParts::streamTrailer() {
  // End-of-contents marks of the five elements that streamHeader opens.
  return Bytes(5 * 2);
}

}  // namespace standin
