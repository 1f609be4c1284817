// Script safety: what the host asks for before it lets a page's script use the object.
#include "session/session.h"

namespace session {

STDMETHODIMP Session::GetInterfaceSafetyOptions(REFIID, DWORD* supported, DWORD* enabled) {
  if (!supported || !enabled) return E_POINTER;
  constexpr DWORD kBoth = INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;
  *supported = kBoth;
  // On purpose: "The reversed safety answer" in docs/behaviour.md.
  *enabled = isUntrusted_ ? INTERFACESAFE_FOR_UNTRUSTED_CALLER : kBoth;
  return S_OK;
}

STDMETHODIMP Session::SetInterfaceSafetyOptions(REFIID, DWORD mask, DWORD enabled) {
  if (mask & ~(INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA)) return E_FAIL;
  if (mask & INTERFACESAFE_FOR_UNTRUSTED_DATA) isUntrusted_ = (enabled & INTERFACESAFE_FOR_UNTRUSTED_DATA) != 0;
  return S_OK;
}

}  // namespace session
