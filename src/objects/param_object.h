// What all seven operation parameter objects share: the flags and the certificate of the caller.
#pragma once

#include "objects/cert_id.h"
#include "objects/held.h"
#include "objects/record_object.h"

namespace objects {

/// Base of a parameter object whose state is the engine's `RecordType`. Flags go to the engine as set.
template <class Interface, class RecordType, class Flag>
class ParamObject : public RecordObject<Interface, RecordType> {
 public:
  STDMETHODIMP get_flag(Flag* value) override { return this->getNumber(this->record_.flag, value); }
  STDMETHODIMP put_flag(Flag value) override { return this->putNumber(this->record_.flag, value); }
  STDMETHODIMP get_mycert(ICertId** value) override { return mycert_.get(value); }
  STDMETHODIMP putref_mycert(ICertId* value) override {
    HRESULT hr = mycert_.put(value);
    // Nothing leaves the record's pointer where it was.
    if (CertId* id = mycert_.object()) this->record_.mycert = id->record();
    return hr;
  }

 private:
  Held<CertId> mycert_;
};

}  // namespace objects
