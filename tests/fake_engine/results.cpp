// Result records are written by offset, as the engine fills them.
#include "fake_engine/results.h"

#include <algorithm>

namespace fake {
namespace {

template <class T>
void Put(void* record, size_t offset, T value) {
  std::memcpy(static_cast<uint8_t*>(record) + offset, &value, sizeof(T));
}

uint8_t* At(void* record, size_t offset) { return static_cast<uint8_t*>(record) + offset; }

void PutText(void* record, size_t offset, const Text& text) {
  char* copy = nullptr;
  if (text) {
    copy = static_cast<char*>(Engine().handOut(text->size() + 1));
    std::memcpy(copy, text->c_str(), text->size() + 1);
  }
  Put(record, offset, copy);
}

/// Writes the count and the array; gives the array, null when it has no elements.
void* PutArray(void* record, size_t countAt, size_t pointerAt, size_t count, size_t size) {
  void* array = count == 0 ? nullptr : Engine().handOut(count * size);
  Put(record, countAt, static_cast<int32_t>(count));
  Put(record, pointerAt, array);
  return array;
}

void PutAltName(void* record, size_t offset, const AltName& name) {
  for (size_t i = 0; i < name.size(); ++i) PutText(record, offset + 8 * i, name[i]);
}

void PutBytes(void* record, size_t offset, const Bytes& bytes) {
  if (bytes.empty()) return;
  void* buffer = Engine().handOut(bytes.size());
  std::memcpy(buffer, bytes.data(), bytes.size());
  Put(record, offset, static_cast<uint32_t>(bytes.size()));
  Put(record, offset + 8, buffer);
}

void PutPolicies(void* record, const std::vector<Policy>& policies) {
  void* array = PutArray(record, 328, 336, policies.size(), 32);
  for (size_t i = 0; i < policies.size(); ++i) {
    PutText(array, 32 * i, policies[i].oid);
    PutText(array, 32 * i + 8, policies[i].organization);
    Put(array, 32 * i + 16, policies[i].noticeNumber);
    PutText(array, 32 * i + 24, policies[i].text);
  }
}

void PutExtensions(void* record, const std::vector<Extension>& extensions) {
  void* array = PutArray(record, 360, 368, extensions.size(), 32);
  for (size_t i = 0; i < extensions.size(); ++i) {
    PutText(array, 32 * i, extensions[i].oid);
    Put(array, 32 * i + 8, extensions[i].type);
    Put(array, 32 * i + 12, extensions[i].critical);
    PutBytes(array, 32 * i + 16, extensions[i].data);
  }
}

}  // namespace

void WriteBlob(void* blob, const Reply& reply) {
  if (blob == nullptr) return Engine().violate("a null output blob");
  if (reply.writesNothing) return;
  PutBytes(blob, 0, reply.output);
  if (reply.outputLength) Put(blob, 0, *reply.outputLength);
}

void WriteRecord(void* record, const Snapshot& from) {
  std::memcpy(record, from.bytes.data(), from.bytes.size());
  for (const auto& [offset, pointee] : from.pointees) {
    void* copy = Engine().handOut(pointee.bytes.size());
    WriteRecord(copy, pointee);
    Put(record, offset, copy);
  }
}

void WriteCertificate(void* record, const Certificate& certificate) {
  Put(record, 0, certificate.fields);
  PutText(record, 8, certificate.issuer);
  PutText(record, 16, certificate.serialNumber);
  PutText(record, 24, certificate.subject);
  PutText(record, 32, certificate.algorithm);
  Put(record, 40, certificate.notBefore);
  Put(record, 44, certificate.notAfter);
  PutText(record, 48, certificate.issuerUID);
  PutText(record, 56, certificate.subjectUID);
  Put(record, 64, certificate.keyUsage);
  Put(record, 68, certificate.notBeforePrivate);
  Put(record, 72, certificate.notAfterPrivate);
  PutAltName(record, 80, certificate.issuerAltName);
  PutAltName(record, 200, certificate.subjectAltName);
  PutText(record, 320, certificate.keyId);
  PutPolicies(record, certificate.policies);
  void* usages = PutArray(record, 344, 352, certificate.extKeyUsage.size(), 8);
  for (size_t i = 0; i < certificate.extKeyUsage.size(); ++i) PutText(usages, 8 * i, certificate.extKeyUsage[i]);
  PutExtensions(record, certificate.extensions);
  PutBytes(record, 376, certificate.certEncoded);
  PutBytes(record, 392, certificate.certHash);
}

void WriteVerifyResult(void* record, const Reply& reply) {
  if (record == nullptr) return Engine().violate("a null verification result");
  if (reply.writesNothing) return;
  void* entries = PutArray(record, 0, 8, reply.signatures.size(), 16);
  if (reply.entryCount) Put(record, 0, *reply.entryCount);
  for (size_t i = 0; i < reply.signatures.size(); ++i) {
    const Signature& signature = reply.signatures[i];
    Put(entries, 16 * i, signature.status);
    Put(entries, 16 * i + 4, signature.time);
    if (!signature.cert) continue;
    void* certificate = Engine().handOut(kCertificate.size);
    WriteCertificate(certificate, *signature.cert);
    Put(entries, 16 * i + 8, certificate);
  }
}

void WriteFindResult(void* record, const Reply& reply) {
  if (record == nullptr) return Engine().violate("a null find result");
  if (reply.writesNothing) return;
  void* array = PutArray(record, 0, 8, reply.certificates.size(), kCertificate.size);
  for (size_t i = 0; i < reply.certificates.size(); ++i) {
    WriteCertificate(At(array, kCertificate.size * i), reply.certificates[i]);
    if (reply.usageCount) Put(At(array, kCertificate.size * i), 344, *reply.usageCount);
  }
  if (reply.findCount) Put(record, 0, *reply.findCount);
}

void WriteDecryptResult(void* record, const Reply& reply) {
  if (record == nullptr) return Engine().violate("a null decryption result");
  if (reply.writesNothing) return;
  Put(record, 0, reply.status);
  if (reply.certificate) WriteCertificate(At(record, 8), *reply.certificate);
}

void WriteText(char* buffer, uint32_t size, const Reply& reply) {
  if (buffer == nullptr || size == 0 || reply.writesNothing) return;
  const size_t length = std::min<size_t>(reply.text.size(), size - 1);
  std::memcpy(buffer, reply.text.data(), length);
  buffer[length] = '\0';
}

}  // namespace fake
