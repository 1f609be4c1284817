// The legacy object's session: opened by the name of a profile, with checks that are due from time to time.
#include <cstring>

#include "legacy/messages.h"
#include "legacy/periods.h"
#include "legacy/pkiobj.h"
#include "legacy/settings.h"
#include "legacy/thread_ansi.h"

pkiobj::~pkiobj() { recipients_.release(session_); }

STDMETHODIMP pkiobj::Init(BSTR profile) {
  if (session_) return initResult_;
  ThreadAnsi given(profile);
  if (!given) return E_OUTOFMEMORY;
  constexpr size_t kNameSize = 260 + 1;
  char name[kNameSize] = {};
  std::strncpy(name, given.get(), kNameSize - 1);

  uint32_t now = SecondsNow();
  // Opened for reading only, and the times are written through it all the same: the attempt fails and nobody
  // misses them, so the checks stay due. Kept on purpose.
  com::RegKey key;
  Periods periods;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, settings::kKey, 0, KEY_READ, key.receive()) == ERROR_SUCCESS)
    periods = ReadPeriods(key.get());
  uint32_t flags = InitFlags(periods, now);

  initResult_ = QUIVO_Initialize(name, flags, &session_);
  if (initResult_ == 0)
    RememberChecks(key.get(), flags, now);
  else
    ShowFailure(initResult_, "Ошибка инициализации %s.", kLegacyCaption);
  return initResult_;
}

STDMETHODIMP pkiobj::Uninit() {
  Ipkiobj* self = this;
  self->FreeRecipCerts();
  // Forgotten first: a call that comes in while the engine closes must not reach the closing session.
  EngineSession session = std::exchange(session_, nullptr);
  return session ? QUIVO_Uninitialize(session) : S_FALSE;
}

STDMETHODIMP pkiobj::IsSigned(BSTR fname) {
  ThreadAnsi file(fname);
  if (!file) return S_FALSE;
  SignedInfoResultRecord info{};
  int32_t code = QUIVO_SignedInfoFile(session_, file.get(), &info);
  bool isSigned = code == 0 && info.signatureCount != 0;
  QUIVO_FreeSignedInfoResult(session_, &info);
  return isSigned ? S_OK : S_FALSE;
}
