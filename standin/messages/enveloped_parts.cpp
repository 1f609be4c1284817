// Putting together of enveloped messages.
#include "standin/messages/enveloped_parts.h"

#include "standin/base/codes.h"
#include "standin/base/oids.h"
#include "standin/certificates/der_objects.h"

namespace standin {
namespace {

Bytes wrapIndefinite(uint8_t tag, ByteView start) {
  Bytes bytes = {tag, 0x80};
  append(bytes, start);
  return bytes;
}

Bytes finishHeader(const Bytes& before, ByteView encrypted_info, uint64_t behind) {
  const Bytes message = ber::encodeStart(ber::kSequence, ber::join({before, encrypted_info}), behind);
  const Bytes explicit_message = ber::encodeStart(ber::kContext0Constructed, message, behind);
  return ber::encodeStart(ber::kSequence, ber::join({kOidEnvelopedData, explicit_message}), behind);
}

}  // namespace

EnvelopedParts EnvelopedParts::of(const MessageReader::Head& head) {
  if (head.kind != MessageKind::kEnveloped) fail(kNotEncrypted);
  EnvelopedParts parts;
  parts.version = head.elements.front();
  if (head.elements.size() == 3) parts.originator = head.elements[1];
  parts.recipients = head.elements.back();
  parts.content_type = head.content_type;
  parts.content_cipher = head.content_cipher;
  return parts;
}

EnvelopedParts EnvelopedParts::of(CMS_ContentInfo* message) {
  unsigned char* der = nullptr;
  const int length = i2d_CMS_ContentInfo(message, &der);
  if (length <= 0) fail(kInternal);
  const OctetsPtr owner(der);
  MessageReader reader([](const MessageReader::Head&) {}, [](ByteView) {});
  reader.feed({der, static_cast<size_t>(length)});
  reader.finish();
  return of(reader.head());
}

void EnvelopedParts::setSender(const X509* certificate) {
  constexpr uint8_t kVersionWithOriginator[] = {2};
  version = ber::encode(ber::kInteger, kVersionWithOriginator);
  originator = ber::encode(ber::kContext0Constructed, ber::encode(ber::kContext0Constructed, derOf(certificate)));
}

Bytes EnvelopedParts::beforeContent() const { return ber::join({version, originator, recipients}); }

Bytes EnvelopedParts::withoutContent() const {
  return finishHeader(beforeContent(), ber::encode(ber::kSequence, ber::join({content_type, content_cipher})), 0);
}

Bytes EnvelopedParts::header(uint64_t ciphertext_length) const {
  const Bytes octets = ber::encodeHeader(ber::kContext0, ciphertext_length);
  const Bytes info =
      ber::encodeStart(ber::kSequence, ber::join({content_type, content_cipher, octets}), ciphertext_length);
  return finishHeader(beforeContent(), info, ciphertext_length);
}

Bytes EnvelopedParts::streamHeader() const {
  const Bytes octets = wrapIndefinite(ber::kContext0Constructed, {});
  const Bytes info = wrapIndefinite(ber::kSequence, ber::join({content_type, content_cipher, octets}));
  const Bytes message = wrapIndefinite(ber::kSequence, ber::join({beforeContent(), info}));
  return wrapIndefinite(ber::kSequence,
                        ber::join({kOidEnvelopedData, wrapIndefinite(ber::kContext0Constructed, message)}));
}

Bytes EnvelopedParts::streamTrailer() {
  // An end-of-contents mark for each of the five elements that streamHeader opens.
  return Bytes(5 * 2);
}

}  // namespace standin
