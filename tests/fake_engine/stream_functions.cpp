// The engine's streaming functions: an Init stores a stream handle, the others receive its address.
#include "fake_engine/recorder.h"
#include "fake_engine/results.h"

using fake::Recorder;
using fake::Reply;

namespace {

int32_t BeginStream(const Reply& reply, void** stream) {
  if (stream == nullptr) {
    fake::Engine().violate("a null address for the stream");
  } else if (!reply.writesNothing && (reply.result == 0 || reply.handle)) {
    *stream = reply.handle ? *reply.handle : fake::Engine().freshHandle();
  }
  return reply.result;
}

int32_t InitWithData(const char* function, void* session, const void* param, const fake::Shape& shape, const void* data,
                     void** stream) {
  Recorder call(function, session);
  return BeginStream(call.record(param, shape).blob(data).record(stream, fake::kPointer).reply(), stream);
}

int32_t UpdateStream(const char* function, void* session, const void* param, const fake::Shape& shape, void** stream,
                     const void* data) {
  Recorder call(function, session);
  return call.record(param, shape).record(stream, fake::kPointer).blob(data).reply().result;
}

int32_t Finish(const char* function, void* session, const void* param, const fake::Shape& shape, void** stream,
               void* out) {
  Recorder call(function, session);
  const Reply reply = call.record(param, shape).record(stream, fake::kPointer).blob(out).reply();
  fake::WriteBlob(out, reply);
  return reply.result;
}

void WriteLeft(int32_t* left, const Reply& reply) {
  if (left == nullptr) {
    fake::Engine().violate("a null address for the count that is left");
  } else if (!reply.writesNothing) {
    *left = reply.left;
  }
}

}  // namespace

extern "C" {

int32_t QUIVO_StrSignInitMem(void* session, const void* param, const void* signIn, void** stream) {
  return InitWithData("QUIVO_StrSignInitMem", session, param, fake::kSignParam, signIn, stream);
}

int32_t QUIVO_StrSignUpdateMem(void* session, const void* param, void** stream, const void* data) {
  return UpdateStream("QUIVO_StrSignUpdateMem", session, param, fake::kSignParam, stream, data);
}

int32_t QUIVO_StrSignFinalMem(void* session, const void* param, void** stream, void* signOut) {
  return Finish("QUIVO_StrSignFinalMem", session, param, fake::kSignParam, stream, signOut);
}

int32_t QUIVO_StrVerifyInitMem(void* session, const void* param, const void* signIn, void** stream) {
  return InitWithData("QUIVO_StrVerifyInitMem", session, param, fake::kVerifyParam, signIn, stream);
}

int32_t QUIVO_StrVerifyUpdateMem(void* session, const void* param, void** stream, const void* data) {
  return UpdateStream("QUIVO_StrVerifyUpdateMem", session, param, fake::kVerifyParam, stream, data);
}

int32_t QUIVO_StrVerifyFinalMem(void* session, const void* param, void** stream, void* signOut, void* result) {
  Recorder call("QUIVO_StrVerifyFinalMem", session);
  call.record(param, fake::kVerifyParam).record(stream, fake::kPointer).blob(signOut);
  const Reply reply = call.record(result, fake::kVerifyResult).reply();
  fake::WriteBlob(signOut, reply);
  fake::WriteVerifyResult(result, reply);
  return reply.result;
}

int32_t QUIVO_StrEncryptInitMem(void* session, const void* param, void** stream) {
  Recorder call("QUIVO_StrEncryptInitMem", session);
  return BeginStream(call.record(param, fake::kEncryptParam).record(stream, fake::kPointer).reply(), stream);
}

int32_t QUIVO_StrEncryptUpdateMem(void* session, const void* param, void** stream, const void* in, void* out) {
  Recorder call("QUIVO_StrEncryptUpdateMem", session);
  const Reply reply = call.record(param, fake::kEncryptParam).record(stream, fake::kPointer).blob(in).blob(out).reply();
  fake::WriteBlob(out, reply);
  return reply.result;
}

int32_t QUIVO_StrEncryptFinalMem(void* session, const void* param, void** stream, void* out) {
  return Finish("QUIVO_StrEncryptFinalMem", session, param, fake::kEncryptParam, stream, out);
}

int32_t QUIVO_StrDecryptInitMem(void* session, const void* param, const void* in, int32_t* left, void** stream) {
  Recorder call("QUIVO_StrDecryptInitMem", session);
  call.record(param, fake::kDecryptParam).blob(in).record(left, fake::kPlainInteger);
  const Reply reply = call.record(stream, fake::kPointer).reply();
  WriteLeft(left, reply);
  return BeginStream(reply, stream);
}

int32_t QUIVO_StrDecryptUpdateMem(void* session, const void* param, void** stream, const void* in, int32_t* left,
                                  void* out) {
  Recorder call("QUIVO_StrDecryptUpdateMem", session);
  call.record(param, fake::kDecryptParam).record(stream, fake::kPointer).blob(in);
  const Reply reply = call.record(left, fake::kPlainInteger).blob(out).reply();
  WriteLeft(left, reply);
  fake::WriteBlob(out, reply);
  return reply.result;
}

int32_t QUIVO_StrDecryptFinalMem(void* session, const void* param, void** stream, void* result) {
  Recorder call("QUIVO_StrDecryptFinalMem", session);
  call.record(param, fake::kDecryptParam).record(stream, fake::kPointer).record(result, fake::kDecryptResult);
  const Reply reply = call.reply();
  fake::WriteDecryptResult(result, reply);
  return reply.result;
}

int32_t QUIVO_StrHashInitMem(void* session, const char* algorithm, void** stream) {
  Recorder call("QUIVO_StrHashInitMem", session);
  return BeginStream(call.text(algorithm).record(stream, fake::kPointer).reply(), stream);
}

int32_t QUIVO_StrHashUpdateMem(void* session, void** stream, const void* data) {
  return Recorder("QUIVO_StrHashUpdateMem", session).record(stream, fake::kPointer).blob(data).reply().result;
}

int32_t QUIVO_StrHashFinalMem(void* session, void** stream, void* hash) {
  const Reply reply = Recorder("QUIVO_StrHashFinalMem", session).record(stream, fake::kPointer).blob(hash).reply();
  fake::WriteBlob(hash, reply);
  return reply.result;
}

}  // extern "C"
