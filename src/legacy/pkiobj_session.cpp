// The legacy object's session: opened by the name of a profile, with checks that are due from time to time.
#include <cstring>

#include "engine/owned.h"
#include "legacy/messages.h"
#include "legacy/periods.h"
#include "legacy/pkiobj.h"
#include "legacy/settings.h"
#include "legacy/thread_ansi.h"

using namespace legacy;

STDMETHODIMP pkiobj::Init(BSTR profile) {
  if (session_.isOpen()) return initResult_;
  Call call(*this);
  ThreadAnsi given(profile);
  if (!given) return E_OUTOFMEMORY;
  constexpr size_t kNameSize = 260 + 1;
  char name[kNameSize] = {};
  std::strncpy(name, given.get(), kNameSize - 1);

  uint32_t now = SecondsNow();
  // Opened for reading only, although times are written through it, on purpose: "Times that are never written" in
  // docs/behaviour.md.
  com::RegKey key;
  Periods periods;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, settings::kKey, 0, KEY_READ, key.receive()) == ERROR_SUCCESS)
    periods = ReadPeriods(key.get());
  uint32_t flags = InitFlags(periods, now);

  bool isOpenedMeanwhile = false;
  int32_t resultMeanwhile = 0;
  int32_t result = session_.open(
      [&](EngineSession* session) {
        int32_t code = QUIVO_Initialize(name, flags, session);
        isOpenedMeanwhile = session_.isOpen();
        resultMeanwhile = initResult_;
        return code;
      },
      0);
  if (isOpenedMeanwhile) return resultMeanwhile;
  initResult_ = result;
  if (result == 0)
    RememberChecks(key.get(), flags, now);
  else
    ShowFailure(result, "Ошибка инициализации %s.", kLegacyCaption);
  return result;
}

STDMETHODIMP pkiobj::Uninit() {
  com::Ref<Ipkiobj> self(this);
  {
    Call call(*this);
    self->FreeRecipCerts();
    // A nested call has closed the session already; one that it opened is not this call's.
    if (!call.isCurrent()) return S_FALSE;
  }
  return session_.isOpen() ? session_.close() : S_FALSE;
}

STDMETHODIMP pkiobj::IsSigned(BSTR fname) {
  Call call(*this);
  ThreadAnsi file(fname);
  if (!file) return S_FALSE;
  engine::SignedInfoResult info(call.session());
  int32_t code = QUIVO_SignedInfoFile(call.session(), file.get(), info.receive());
  return code == 0 && info.get().signatureCount != 0 ? S_OK : S_FALSE;
}
