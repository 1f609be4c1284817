// Result records are written by offset, as the engine fills them.
#include "fake_engine/results.h"

#include <algorithm>

namespace fake {
namespace {

template <class T>
void put(void* record, size_t offset, T value) {
  std::memcpy(static_cast<uint8_t*>(record) + offset, &value, sizeof(T));
}

uint8_t* at(void* record, size_t offset) { return static_cast<uint8_t*>(record) + offset; }

void putText(void* record, size_t offset, const Text& text) {
  char* copy = nullptr;
  if (text) {
    copy = static_cast<char*>(state().handOut(text->size() + 1));
    std::memcpy(copy, text->c_str(), text->size() + 1);
  }
  put(record, offset, copy);
}

/// Writes the count and the array; gives the array, null when it has no elements.
void* putArray(void* record, size_t countAt, size_t pointerAt, size_t count, size_t size) {
  void* array = count == 0 ? nullptr : state().handOut(count * size);
  put(record, countAt, static_cast<int32_t>(count));
  put(record, pointerAt, array);
  return array;
}

void putAltName(void* record, size_t offset, const AltName& name) {
  for (size_t i = 0; i < name.size(); ++i) putText(record, offset + 8 * i, name[i]);
}

void putBytes(void* record, size_t offset, const Bytes& bytes) {
  if (bytes.empty()) return;
  void* buffer = state().handOut(bytes.size());
  std::memcpy(buffer, bytes.data(), bytes.size());
  put(record, offset, static_cast<uint32_t>(bytes.size()));
  put(record, offset + 8, buffer);
}

void putPolicies(void* record, const std::vector<Policy>& policies) {
  void* array = putArray(record, 328, 336, policies.size(), 32);
  for (size_t i = 0; i < policies.size(); ++i) {
    putText(array, 32 * i, policies[i].oid);
    putText(array, 32 * i + 8, policies[i].org_name);
    put(array, 32 * i + 16, policies[i].not_num);
    putText(array, 32 * i + 24, policies[i].text);
  }
}

void putExtensions(void* record, const std::vector<Extension>& extensions) {
  void* array = putArray(record, 360, 368, extensions.size(), 32);
  for (size_t i = 0; i < extensions.size(); ++i) {
    putText(array, 32 * i, extensions[i].oid);
    put(array, 32 * i + 8, extensions[i].type);
    put(array, 32 * i + 12, extensions[i].critical);
    putBytes(array, 32 * i + 16, extensions[i].data);
  }
}

}  // namespace

void writeBlob(void* blob, const Reply& reply) {
  if (blob == nullptr) return state().violate("a null output blob");
  if (!reply.writesNothing) putBytes(blob, 0, reply.output);
}

void writeRecord(void* record, const Snapshot& from) {
  std::memcpy(record, from.bytes.data(), from.bytes.size());
  for (const auto& [offset, pointee] : from.pointees) {
    void* copy = state().handOut(pointee.bytes.size());
    writeRecord(copy, pointee);
    put(record, offset, copy);
  }
}

void writeCertificate(void* record, const Certificate& certificate) {
  put(record, 0, certificate.fields);
  putText(record, 8, certificate.issuer);
  putText(record, 16, certificate.serialNumber);
  putText(record, 24, certificate.subject);
  putText(record, 32, certificate.algorithm);
  put(record, 40, certificate.notBefore);
  put(record, 44, certificate.notAfter);
  putText(record, 48, certificate.issuerUID);
  putText(record, 56, certificate.subjectUID);
  put(record, 64, certificate.keyUsage);
  put(record, 68, certificate.notBeforePrivate);
  put(record, 72, certificate.notAfterPrivate);
  putAltName(record, 80, certificate.issuerAltName);
  putAltName(record, 200, certificate.subjectAltName);
  putText(record, 320, certificate.keyId);
  putPolicies(record, certificate.policies);
  void* usages = putArray(record, 344, 352, certificate.extKeyUsage.size(), 8);
  for (size_t i = 0; i < certificate.extKeyUsage.size(); ++i) putText(usages, 8 * i, certificate.extKeyUsage[i]);
  putExtensions(record, certificate.extensions);
  putBytes(record, 376, certificate.certEncoded);
  putBytes(record, 392, certificate.certHash);
}

void writeVerifyResult(void* record, const Reply& reply) {
  if (record == nullptr) return state().violate("a null verification result");
  if (reply.writesNothing) return;
  void* entries = putArray(record, 0, 8, reply.signatures.size(), 16);
  for (size_t i = 0; i < reply.signatures.size(); ++i) {
    const Signature& signature = reply.signatures[i];
    put(entries, 16 * i, signature.status);
    put(entries, 16 * i + 4, signature.time);
    if (!signature.cert) continue;
    void* certificate = state().handOut(408);
    writeCertificate(certificate, *signature.cert);
    put(entries, 16 * i + 8, certificate);
  }
}

void writeFindResult(void* record, const Reply& reply) {
  if (record == nullptr) return state().violate("a null find result");
  if (reply.writesNothing) return;
  void* array = putArray(record, 0, 8, reply.certificates.size(), 408);
  for (size_t i = 0; i < reply.certificates.size(); ++i) writeCertificate(at(array, 408 * i), reply.certificates[i]);
  if (reply.findCount) put(record, 0, *reply.findCount);
}

void writeDecryptResult(void* record, const Reply& reply) {
  if (record == nullptr) return state().violate("a null decryption result");
  if (reply.writesNothing) return;
  put(record, 0, reply.status);
  if (reply.certificate) writeCertificate(at(record, 8), *reply.certificate);
}

void writeText(char* buffer, uint32_t size, const Reply& reply) {
  if (buffer == nullptr || size == 0 || reply.writesNothing) return;
  const size_t length = std::min<size_t>(reply.text.size(), size - 1);
  std::memcpy(buffer, reply.text.data(), length);
  buffer[length] = '\0';
}

}  // namespace fake
