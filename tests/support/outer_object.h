// An object that aggregates an object of the module, as an outer object of any language does.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include "support/ptr.h"

/// The interface that only the outer object has.
constexpr IID kOuterOnly = {0x5A1C7B62, 0x3F0E, 0x4E8B, {0x9C, 0x11, 0x2D, 0x6A, 0x70, 0x55, 0x41, 0x9E}};

class OuterObject final : public IUnknown {
 public:
  /// Creates the inner object with this one as its outer; what CreateInstance gave is in `created`.
  explicit OuterObject(IClassFactory* factory) {
    created = factory->CreateInstance(this, IID_IUnknown, inner.voidOut());
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (iid == IID_IUnknown || iid == kOuterOnly) {
      *object = this;
      AddRef();
      return S_OK;
    }
    if (inner.get() != nullptr) return inner->QueryInterface(iid, object);
    *object = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }

  /// The inner object's own IUnknown.
  Ptr<IUnknown> inner;
  HRESULT created = E_UNEXPECTED;
  ULONG references = 1;
};
