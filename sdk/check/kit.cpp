#include "kit.h"

#include <cstdio>

#include "engine/codes.h"
#include "engine/flags.h"
#include "read_through.h"

namespace check {

std::string Hex(int32_t code) {
  char text[16];
  std::snprintf(text, sizeof text, code > 0 && code < 0x10000 ? "0x%04X" : "0x%08X", static_cast<unsigned>(code));
  return text;
}

void Expect(bool holds, const std::string& seen) {
  if (!holds) throw Failure{seen};
}

void Succeeds(const std::string& function, int32_t code) {
  if (code == engine::kErrorNotSupported) throw NotSupported{};
  Expect(code == 0, function + ": " + Hex(code));
}

void Fails(const std::string& function, int32_t code) {
  if (code == engine::kErrorNotSupported) throw NotSupported{};
  Expect(code != 0, function + ": success");
  Expect(code != 1, function + ": 1, which callers take for success");
  Expect((code & 0xFFFF) != 0, function + ": " + Hex(code) + ", whose low half is 0");
}

void Needs(bool isThere, const char* what) {
  if (!isThere) throw NotChecked{std::string("needs ") + what};
}

int32_t Kit::openWith(const std::string& keys, const std::string& pin, EngineSession& session) const {
  InText pse(keys);
  InText localstore(options.store);
  InText pincode(pin);
  LocalParamRecord local{};
  local.size = sizeof local;
  local.pse = pse.get();
  local.localstore = localstore.get();
  local.pincode = pincode.get();
  In<LocalParamRecord> param(local);
  Out<EngineSession> handle;
  const int32_t code = engine.QUIVO_InitializeEx(kEngineLocalParam, param.get(), handle.get());
  session = *handle;
  return code;
}

Session Kit::open() const {
  EngineSession session = nullptr;
  if (options.profile.empty()) {
    Succeeds("InitializeEx", openWith(options.keys, options.pin, session));
  } else {
    InText profile(options.profile);
    Out<EngineSession> handle;
    Succeeds("Initialize", engine.QUIVO_Initialize(profile.get(), 0, handle.get()));
    session = *handle;
  }
  Expect(session != nullptr, "no handle");
  return {engine, session};
}

Session Kit::openMinimal() const {
  Out<EngineSession> handle;
  Succeeds("InitMinimal", engine.QUIVO_InitMinimal(handle.get()));
  Expect(*handle != nullptr, "no handle");
  return {engine, *handle};
}

void Verified::isGood(const std::string& function) const {
  Succeeds(function, code);
  Expect(!statuses.empty(), function + ": no signature");
  for (const int32_t status : statuses) Expect(status == 0, function + ": a signature with status " + Hex(status));
}

Bytes Kit::take(EngineSession session, DataBlob_t& blob, const std::string& function) const {
  ReadThrough(blob);
  Bytes bytes(blob.data, blob.data + blob.len);
  if (blob.data == nullptr) return bytes;
  const int32_t code = engine.QUIVO_FreeMem(session, blob.data);
  Expect(code == 0, "FreeMem: " + Hex(code) + " for the buffer of " + function);
  blob = {};
  return bytes;
}

void Kit::untouched(const DataBlob_t& blob, const std::string& function) {
  Expect(blob.len == 0 && blob.data == nullptr, function + " has failed and handed out a buffer");
}

const Bytes& Kit::ownCertificate() {
  if (!ownCertificate_.empty()) return ownCertificate_;
  const Session session = open();
  FindParamRecord wanted{};
  wanted.flag = engine::kFindMy;
  wanted.info = engine::kFieldCertEncoded;
  In<FindParamRecord> param(wanted);
  Out<FindResultRecord> result;
  Succeeds("FindCert", engine.QUIVO_FindCert(session, param.get(), result.get()));
  ReadThrough(*result);
  Expect(result->count > 0, "FindCert: no own certificate");
  const DataBlob_t& encoded = result->certificates[0].certEncoded;
  Bytes found(encoded.data, encoded.data + encoded.len);
  Expect(!found.empty(), "FindCert: the certificate is not encoded");
  Succeeds("FreeFindResult", engine.QUIVO_FreeFindResult(session, result.get()));
  ownCertificate_ = found;
  return ownCertificate_;
}

Bytes Kit::sign(EngineSession session, uint32_t flags, const Bytes& data, const Bytes* message) const {
  In<SignParamRecord> param({kPkcs7 | flags, nullptr});
  InBytes bytes(data);
  InBytes given(message == nullptr ? Bytes() : *message);
  InBytes absent;
  Out<DataBlob_t> out;
  Succeeds("SignMem", engine.QUIVO_SignMem(session, param.get(), bytes.blob(),
                                           message == nullptr ? absent.blob() : given.blob(), out.get()));
  Expect(out->len != 0, "SignMem: an empty message");
  return take(session, *out, "SignMem");
}

Verified Kit::verify(EngineSession session, const Bytes& message, const Bytes* data, uint32_t flags,
                     int32_t signToDelete) const {
  VerifyParamRecord wanted{};
  wanted.flag = flags;
  wanted.nSignToDelete = signToDelete;
  wanted.info = engine::kFieldSubject;
  In<VerifyParamRecord> param(wanted);
  InBytes bytes(message);
  InBytes given(data == nullptr ? Bytes() : *data);
  InBytes absent;
  Out<DataBlob_t> out;
  Out<VerifyResultRecord> result;
  Verified verified{};
  verified.code = engine.QUIVO_VerifyMem(session, param.get(), data == nullptr ? absent.blob() : given.blob(),
                                         bytes.blob(), out.get(), result.get());
  if (verified.code == engine::kErrorNotSupported) throw NotSupported{};
  ReadThrough(*result);
  for (int32_t i = 0; i < result->count; ++i) {
    const SignStatusEntry& entry = result->entries[i];
    verified.statuses.push_back(entry.status);
    const bool hasName = entry.cert != nullptr && entry.cert->subject != nullptr;
    verified.signers.push_back(hasName ? entry.cert->subject : "");
  }
  Succeeds("FreeVerifyResult", engine.QUIVO_FreeVerifyResult(session, result.get()));
  if (verified.code == 0) {
    verified.out = take(session, *out, "VerifyMem");
  } else {
    untouched(*out, "VerifyMem");
  }
  return verified;
}

void Kit::verifiesAs(EngineSession session, const Bytes& message, const Bytes& data) const {
  const Verified verified = verify(session, message);
  verified.isGood("VerifyMem");
  Expect(verified.out == data, "VerifyMem: other content");
}

CertificateRecord Receiver::recordOf(const DataBlob_t& encoded) {
  CertificateRecord record{};
  record.fields = engine::kFieldCertEncoded;
  record.certEncoded = encoded;
  return record;
}

Bytes Kit::encrypt(EngineSession session, const Bytes& data) {
  Receiver receiver(ownCertificate());
  InBytes bytes(data);
  Out<DataBlob_t> out;
  Succeeds("EncryptMem", engine.QUIVO_EncryptMem(session, receiver.param(), bytes.blob(), out.get()));
  Expect(out->len != 0, "EncryptMem: an empty message");
  return take(session, *out, "EncryptMem");
}

Bytes Kit::decrypt(EngineSession session, const Bytes& message) const {
  In<DecryptParamRecord> param({kPkcs7, nullptr, engine::kFieldSubject});
  InBytes bytes(message);
  Out<DataBlob_t> out;
  Out<DecryptResultRecord> result;
  Succeeds("DecryptMem", engine.QUIVO_DecryptMem(session, param.get(), bytes.blob(), out.get(), result.get()));
  ReadThrough(*result);
  Expect(result->status == 0, "DecryptMem: the status is " + Hex(result->status));
  Succeeds("FreeDecryptResult", engine.QUIVO_FreeDecryptResult(session, result.get()));
  return take(session, *out, "DecryptMem");
}

std::string Kit::write(const std::string& name, const Bytes& bytes) const {
  const std::string file = path(name);
  FILE* out = std::fopen(file.c_str(), "wb");
  Expect(out != nullptr, file + " cannot be written: the folder for files");
  std::fwrite(bytes.data(), 1, bytes.size(), out);
  std::fclose(out);
  return file;
}

Bytes Kit::read(const std::string& path) {
  Bytes bytes;
  FILE* in = std::fopen(path.c_str(), "rb");
  if (in == nullptr) return bytes;
  uint8_t piece[4096];
  for (size_t count; (count = std::fread(piece, 1, sizeof piece, in)) > 0;)
    bytes.insert(bytes.end(), piece, piece + count);
  std::fclose(in);
  return bytes;
}

Bytes Payload(size_t size) {
  Bytes bytes(size);
  uint32_t state = 1;
  for (uint8_t& byte : bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<uint8_t>(state >> 24);
  }
  return bytes;
}

}  // namespace check
