// The engine's functions that sign, verify, encrypt and decrypt whole buffers and files.
#include "fake_engine/recorder.h"
#include "fake_engine/results.h"

using fake::Recorder;
using fake::Reply;

namespace {

int32_t SignFile(const char* function, void* session, const void* param, const char* data, const char* signIn,
                 const char* signOut) {
  Recorder call(function, session);
  return call.record(param, fake::kSignParam).text(data).text(signIn).text(signOut).reply().result;
}

int32_t VerifyFile(const char* function, void* session, const void* param, const char* data, const char* signIn,
                   const char* signOut, void* result) {
  Recorder call(function, session);
  call.record(param, fake::kVerifyParam).text(data).text(signIn).text(signOut).record(result, fake::kVerifyResult);
  const Reply reply = call.reply();
  fake::WriteVerifyResult(result, reply);
  return reply.result;
}

int32_t EncryptFile(const char* function, void* session, const void* param, const char* in, const char* out) {
  return Recorder(function, session).record(param, fake::kEncryptParam).text(in).text(out).reply().result;
}

int32_t DecryptFile(const char* function, void* session, const void* param, const char* in, const char* out,
                    void* result) {
  Recorder call(function, session);
  call.record(param, fake::kDecryptParam).text(in).text(out).record(result, fake::kDecryptResult);
  const Reply reply = call.reply();
  fake::WriteDecryptResult(result, reply);
  return reply.result;
}

}  // namespace

extern "C" {

int32_t QUIVO_SignMem(void* session, const void* param, const void* data, const void* signIn, void* signOut) {
  Recorder call("QUIVO_SignMem", session);
  const Reply reply = call.record(param, fake::kSignParam).blob(data).blob(signIn).blob(signOut).reply();
  fake::WriteBlob(signOut, reply);
  return reply.result;
}

int32_t QUIVO_SignFile(void* session, const void* param, const char* data, const char* signIn, const char* signOut) {
  return SignFile("QUIVO_SignFile", session, param, data, signIn, signOut);
}

int32_t QUIVO_StrSignFile(void* session, const void* param, const char* data, const char* signIn, const char* signOut) {
  return SignFile("QUIVO_StrSignFile", session, param, data, signIn, signOut);
}

int32_t QUIVO_SignAndEncryptFile(void* session, const void* sign, const void* encrypt, const char* in,
                                 const char* out) {
  Recorder call("QUIVO_SignAndEncryptFile", session);
  return call.record(sign, fake::kSignParam).record(encrypt, fake::kEncryptParam).text(in).text(out).reply().result;
}

int32_t QUIVO_SignedInfoFile(void* session, const char* file, void* info) {
  Recorder call("QUIVO_SignedInfoFile", session);
  const Reply reply = call.text(file).record(info, fake::kSignedInfoResult).reply();
  if (info != nullptr && !reply.writesNothing) std::memcpy(static_cast<uint8_t*>(info) + 4, &reply.signatureCount, 4);
  return reply.result;
}

int32_t QUIVO_FreeSignedInfoResult(void* session, void* info) {
  return fake::TakeBack("QUIVO_FreeSignedInfoResult", session, info, fake::kSignedInfoResult);
}

int32_t QUIVO_VerifyMem(void* session, const void* param, const void* data, const void* signIn, void* signOut,
                        void* result) {
  Recorder call("QUIVO_VerifyMem", session);
  call.record(param, fake::kVerifyParam).blob(data).blob(signIn).blob(signOut).record(result, fake::kVerifyResult);
  const Reply reply = call.reply();
  fake::WriteBlob(signOut, reply);
  fake::WriteVerifyResult(result, reply);
  return reply.result;
}

int32_t QUIVO_VerifyFile(void* session, const void* param, const char* data, const char* signIn, const char* signOut,
                         void* result) {
  return VerifyFile("QUIVO_VerifyFile", session, param, data, signIn, signOut, result);
}

int32_t QUIVO_StrVerifyFile(void* session, const void* param, const char* data, const char* signIn, const char* signOut,
                            void* result) {
  return VerifyFile("QUIVO_StrVerifyFile", session, param, data, signIn, signOut, result);
}

int32_t QUIVO_FreeVerifyResult(void* session, void* result) {
  return fake::TakeBack("QUIVO_FreeVerifyResult", session, result, fake::kVerifyResult);
}

int32_t QUIVO_EncryptMem(void* session, const void* param, const void* in, void* out) {
  const Reply reply =
      Recorder("QUIVO_EncryptMem", session).record(param, fake::kEncryptParam).blob(in).blob(out).reply();
  fake::WriteBlob(out, reply);
  return reply.result;
}

int32_t QUIVO_EncryptFile(void* session, const void* param, const char* in, const char* out) {
  return EncryptFile("QUIVO_EncryptFile", session, param, in, out);
}

int32_t QUIVO_StrEncryptFile(void* session, const void* param, const char* in, const char* out) {
  return EncryptFile("QUIVO_StrEncryptFile", session, param, in, out);
}

int32_t QUIVO_DecryptMem(void* session, const void* param, const void* in, void* out, void* result) {
  Recorder call("QUIVO_DecryptMem", session);
  call.record(param, fake::kDecryptParam).blob(in).blob(out).record(result, fake::kDecryptResult);
  const Reply reply = call.reply();
  fake::WriteBlob(out, reply);
  fake::WriteDecryptResult(result, reply);
  return reply.result;
}

int32_t QUIVO_DecryptFile(void* session, const void* param, const char* in, const char* out, void* result) {
  return DecryptFile("QUIVO_DecryptFile", session, param, in, out, result);
}

int32_t QUIVO_StrDecryptFile(void* session, const void* param, const char* in, const char* out, void* result) {
  return DecryptFile("QUIVO_StrDecryptFile", session, param, in, out, result);
}

int32_t QUIVO_DecryptAndVerifyFile(void* session, const void* decrypt, const void* verify, const char* in,
                                   const char* out, void* decrypted, void* verified) {
  Recorder call("QUIVO_DecryptAndVerifyFile", session);
  call.record(decrypt, fake::kDecryptParam).record(verify, fake::kVerifyParam).text(in).text(out);
  call.record(decrypted, fake::kDecryptResult).record(verified, fake::kVerifyResult);
  const Reply reply = call.reply();
  fake::WriteDecryptResult(decrypted, reply);
  fake::WriteVerifyResult(verified, reply);
  return reply.result;
}

int32_t QUIVO_FreeDecryptResult(void* session, void* result) {
  return fake::TakeBack("QUIVO_FreeDecryptResult", session, result, fake::kDecryptResult);
}

}  // extern "C"
