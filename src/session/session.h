// What QUIVO is without its operations: one engine session, script safety, the selected profile, the texts of results.
#pragma once

#include <objsafe.h>

#include "com/object.h"
#include "engine/session_owner.h"
#include "errors/result.h"
#include "quivocom.h"

#ifdef __CRT_UUID_DECL
// The header of mingw-w64 declares the interface without its identifier.
__CRT_UUID_DECL(IObjectSafety, 0xcb5bdc81, 0x93c1, 0x11cf, 0x8f, 0x20, 0x00, 0x80, 0x5f, 0x2c, 0xd0, 0x64)
#endif

namespace session {

class Session : public com::Object<IQUIVO, IObjectSafety> {
 public:
  // Opening and closing.
  STDMETHODIMP Initialize(BSTR profile, Init_Flag_t flag) override;
  STDMETHODIMP InitializeEx(IDispatch* param) override;
  STDMETHODIMP InitMinimal() override;
  STDMETHODIMP Uninitialize() override;
  STDMETHODIMP UpdateCrl(BSTR* description) override;

  // The selected profile, and the texts of results.
  STDMETHODIMP GetCurrentProfileNameVBS(VARIANT* var_profile) override;
  STDMETHODIMP GetPKIErrorText(LONG err_code, BSTR* err_text) override;
  STDMETHODIMP GetPKIErrorTextVBS(LONG err_code, VARIANT* err_text) override;

  // Script safety, negotiated by the host for all interfaces alike.
  STDMETHODIMP GetInterfaceSafetyOptions(REFIID iid, DWORD* supported, DWORD* enabled) override;
  STDMETHODIMP SetInterfaceSafetyOptions(REFIID iid, DWORD mask, DWORD enabled) override;

  /// The session of the engine calls. Without an open one they get a null handle, and the engine refuses them.
  engine::SessionOwner& owner() { return owner_; }
  /// True once the host asked for safety with untrusted data: every file method then refuses to work.
  bool isUntrusted() const { return isUntrusted_; }

 protected:
  ~Session();

 private:
  /// Opens the session; the engine's code is mapped.
  template <class OpenCall>
  HRESULT open(OpenCall call) {
    return errors::ToModuleHResult(owner_.open(call, E_QUIVO_ALREADY_INITIALIZED));
  }

  engine::SessionOwner owner_;
  bool isUntrusted_ = false;
};

}  // namespace session
