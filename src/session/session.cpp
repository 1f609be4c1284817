// The life of the engine session: open, close, update of the revocation lists.
#include <cstring>

#include "com/owner.h"
#include "com/ref.h"
#include "convert/strings.h"
#include "errors/result.h"
#include "objects/session_params.h"
#include "session/session.h"

namespace session {

Session::~Session() {
  if (owner_.isOpen()) owner_.close();
}

STDMETHODIMP Session::Initialize(BSTR profile, Init_Flag_t flag) {
  if (owner_.isOpen()) return E_QUIVO_ALREADY_INITIALIZED;
  convert::AnsiString name;
  HRESULT hr = convert::BstrToAnsi(profile, name);
  // On purpose: "Failures that are not re-based" in docs/behaviour.md.
  if (FAILED(hr)) return hr;
  return open([&](EngineSession* opened) { return QUIVO_Initialize(name.get(), static_cast<uint32_t>(flag), opened); });
}

STDMETHODIMP Session::InitMinimal() {
  if (owner_.isOpen()) return E_QUIVO_ALREADY_INITIALIZED;
  return open(QUIVO_InitMinimal);
}

namespace {

/// The name of an object's interface, as its type information gives it.
HRESULT InterfaceName(IDispatch* object, com::Bstr& name) {
  com::Ref<ITypeInfo> info;
  HRESULT hr = object->GetTypeInfo(0, 0, info.receive());
  hr = info.received(hr, E_UNEXPECTED);
  if (FAILED(hr)) return hr;
  com::Ref<ITypeLib> library;
  UINT index = 0;
  hr = info->GetContainingTypeLib(library.receive(), &index);
  hr = library.received(hr, E_UNEXPECTED);
  if (FAILED(hr)) return hr;
  return library->GetDocumentation(static_cast<INT>(index), name.receive(), nullptr, nullptr, nullptr);
}

}  // namespace

STDMETHODIMP Session::InitializeEx(IDispatch* param) {
  if (owner_.isOpen()) return E_QUIVO_ALREADY_INITIALIZED;
  if (!param) return E_QUIVO_INVALID_ARGUMENT;
  com::Bstr interfaceName;
  HRESULT hr = InterfaceName(param, interfaceName);
  if (FAILED(hr)) return errors::ToModuleHResult(hr);
  convert::AnsiString name;
  hr = convert::BstrToAnsi(interfaceName.get(), name);
  if (FAILED(hr)) return hr == E_OUTOFMEMORY ? E_QUIVO_OUT_OF_MEMORY : hr;
  if (!name) return E_QUIVO_INVALID_ARGUMENT;

  LocalParam* local = std::strcmp(name.get(), "ILocalParam") == 0 ? com::Own<LocalParam>(param) : nullptr;
  if (local)
    return open([&](EngineSession* opened) { return QUIVO_InitializeEx(kEngineLocalParam, local->record(), opened); });
  RSrvParam* remote = std::strcmp(name.get(), "IRSrvParam") == 0 ? com::Own<RSrvParam>(param) : nullptr;
  if (remote)
    return open(
        [&](EngineSession* opened) { return QUIVO_InitializeEx(kEngineRemoteParam, remote->record(), opened); });
  return E_QUIVO_INVALID_ARGUMENT;
}

STDMETHODIMP Session::Uninitialize() {
  // On purpose: "The raw code of Uninitialize" in docs/behaviour.md.
  return owner_.isOpen() ? owner_.close() : S_OK;
}

STDMETHODIMP Session::UpdateCrl(BSTR* description) {
  if (!description) return E_QUIVO_INVALID_ARGUMENT;
  constexpr uint32_t kSize = 4096;
  char text[kSize + 1] = {};
  DataBlob_t buffer{kSize, reinterpret_cast<uint8_t*>(text)};
  engine::SessionUse session(owner_);
  int32_t code = QUIVO_Ctrl(session, kEngineCtrlUpdateCrl, &buffer);
  // On purpose: "A failure that is a text" in docs/behaviour.md.
  if (code != 0 && text[0] == '\0') return errors::ToModuleHResult(code);
  return errors::ToModuleHResult(convert::AnsiToBstr(text, description));
}

}  // namespace session
