// Exported functions: sessions, texts and memory.
#include <openssl/evp.h>

#include "standin/base/ansi.h"
#include "standin/exports/guard.h"
#include "standin/exports/texts.h"
#include "standin/sessions/profile.h"

using namespace standin;

namespace {

/// Opens a session with the source that `source()` returns.
template <typename Source>
int32_t OpenSession(EngineSession* handle, Source source) {
  return Guarded([&] {
    EngineSession& opened = Required(handle);
    opened = AddSession(std::make_shared<Session>(source()));
  });
}

}  // namespace

int32_t QUIVO_Initialize(const char* profile, uint32_t flags, EngineSession* session) {
  return OpenSession(session, [&] {
    SessionSource source = ReadProfile(TextOrEmpty(profile));
    source.flags = flags;
    return source;
  });
}

int32_t QUIVO_InitializeEx(int32_t kind, const void* param, EngineSession* session) {
  if (kind == kEngineRemoteParam) return kRemoteSession;
  if (kind != kEngineLocalParam || param == nullptr) return kWinInvalidParameter;
  const LocalParamRecord& local = *static_cast<const LocalParamRecord*>(param);
  if (local.size != sizeof local) return kWinInvalidParameter;
  return OpenSession(session, [&] {
    return SessionSource{TextOrEmpty(local.pse), TextOrEmpty(local.pincode), TextOrEmpty(local.localstore), local.flag};
  });
}

int32_t QUIVO_InitMinimal(EngineSession* session) {
  return OpenSession(session, [] { return SessionSource(); });
}

int32_t QUIVO_Uninitialize(EngineSession session) {
  return Guarded([&] { RemoveSession(session); });
}

int32_t QUIVO_GetErrorText(int32_t code, char* buffer, uint32_t size) {
  if (buffer == nullptr || size == 0) return kWinInvalidParameter;
  WriteErrorText(code, buffer, size);
  return kOk;
}

void* QUIVO_AllocMem(EngineSession session, uint32_t length) {
  void* buffer = nullptr;
  InSession(session, [&](Session& s) { buffer = s.buffers.allocate(length); });
  return buffer;
}

int32_t QUIVO_FreeMem(EngineSession session, void* buffer) {
  return InSession(session, [&](Session& s) {
    if (!s.buffers.release(buffer)) Fail(kWinInvalidParameter);
  });
}

int32_t QUIVO_EncodeMem(char* text, const uint8_t* bytes, uint32_t length) {
  constexpr uint32_t kLongest = 0x40000000;
  if (text == nullptr || (bytes == nullptr && length != 0) || length > kLongest)
    return HRESULT_FROM_WIN32(kWinInvalidParameter);
  return EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text), bytes, static_cast<int>(length));
}

int32_t QUIVO_Ctrl(EngineSession session, int32_t code, DataBlob_t* text) {
  return InSession(session, [&](Session& s) {
    if (code != kEngineCtrlUpdateCrl) Fail(kNotSupported);
    DataBlob_t& buffer = Required(text);
    if (buffer.data == nullptr || buffer.len == 0) Fail(kWinInvalidParameter);
    WriteCrlReport(s.store.reloadCrls(), reinterpret_cast<char*>(buffer.data), buffer.len);
  });
}
