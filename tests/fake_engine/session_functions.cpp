// The engine's functions of sessions, texts and memory.
#include <windows.h>

#include "fake_engine/recorder.h"
#include "fake_engine/results.h"

using fake::Engine;
using fake::Recorder;
using fake::Reply;

namespace {

int32_t OpenSession(const Reply& reply, void** session) {
  if (session == nullptr) {
    Engine().violate("a null address for the session");
  } else if (!reply.writesNothing && (reply.result == 0 || reply.handle)) {
    *session = Engine().openSession(reply);
  }
  return reply.result;
}

}  // namespace

extern "C" {

int32_t QUIVO_Initialize(const char* profile, uint32_t flags, void** session) {
  return OpenSession(Recorder("QUIVO_Initialize").text(profile).number(flags).record(session, fake::kPointer).reply(),
                     session);
}

int32_t QUIVO_InitializeEx(int32_t kind, const void* param, void** session) {
  const fake::Shape& shape = kind == 1 ? fake::kLocalParam : fake::kRSrvParam;
  return OpenSession(
      Recorder("QUIVO_InitializeEx").number(kind).record(param, shape).record(session, fake::kPointer).reply(),
      session);
}

int32_t QUIVO_InitMinimal(void** session) {
  return OpenSession(Recorder("QUIVO_InitMinimal").record(session, fake::kPointer).reply(), session);
}

int32_t QUIVO_Uninitialize(void* session) {
  const Reply reply = Recorder("QUIVO_Uninitialize", session).reply();
  Engine().closeSession(session);
  return reply.result;
}

int32_t QUIVO_Ctrl(void* session, int32_t code, void* text) {
  Recorder call("QUIVO_Ctrl", session);
  const Reply reply = call.number(code).blob(text).reply();
  if (text != nullptr && !reply.text.empty()) {
    const auto blob = fake::CopyBytes(text, 16);
    fake::WriteText(blob.read<char*>(8), blob.u32(0), reply);
  }
  return reply.result;
}

int32_t QUIVO_GetErrorText(int32_t code, char* buffer, uint32_t size) {
  const Reply reply = Recorder("QUIVO_GetErrorText").number(code).bytes(buffer, 0).number(size).reply();
  fake::WriteText(buffer, size, reply);
  return reply.result;
}

void* QUIVO_AllocMem(void* session, uint32_t length) {
  const Reply reply = Recorder("QUIVO_AllocMem", session).number(length).reply();
  return reply.result == 0 ? Engine().handOut(length) : nullptr;
}

int32_t QUIVO_FreeMem(void* session, void* buffer) {
  const Reply reply = Recorder("QUIVO_FreeMem", session).bytes(buffer, 0).reply();
  Engine().takeBack(reinterpret_cast<uintptr_t>(buffer));
  return reply.result;
}

int32_t QUIVO_EncodeMem(char* text, const uint8_t* bytes, uint32_t length) {
  const Reply reply = Recorder("QUIVO_EncodeMem").bytes(text, 0).bytes(bytes, length).number(length).reply();
  const uint64_t room = (uint64_t{4} * length + 4) / 3 + 4;
  if (reply.text.size() >= room) {
    Engine().violate("a text that is too long for the bytes");
  } else if (!reply.writesNothing) {
    std::memcpy(text, reply.text.c_str(), reply.text.size() + 1);
  }
  return reply.result;
}

int32_t QUIVO_HashMem(void* session, const void* in, void* hash) {
  const Reply reply = Recorder("QUIVO_HashMem", session).blob(in).blob(hash).reply();
  fake::WriteBlob(hash, reply);
  return reply.result;
}

int32_t QUIVO_HashFile(void* session, const char* file, void* hash) {
  const Reply reply = Recorder("QUIVO_HashFile", session).text(file).blob(hash).reply();
  fake::WriteBlob(hash, reply);
  return reply.result;
}

int32_t QUIVO_StrHashFile(void* session, const char* algorithm, const char* file, void* hash) {
  const Reply reply = Recorder("QUIVO_StrHashFile", session).text(algorithm).text(file).blob(hash).reply();
  fake::WriteBlob(hash, reply);
  return reply.result;
}

int32_t QUIVO_GenRandom(void* session, int32_t length, void* random) {
  const Reply reply = Recorder("QUIVO_GenRandom", session).number(length).blob(random).reply();
  fake::WriteBlob(random, reply);
  return reply.result;
}

}  // extern "C"
