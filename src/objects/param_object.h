// What all seven operation parameter objects share: the flags and the certificate of the caller.
#pragma once

#include "objects/cert_id.h"
#include "objects/fields.h"
#include "objects/held.h"

/// Base of a parameter object whose state is the engine's `RecordType`. Flags go to the engine as set.
template <class Interface, class RecordType, class Flag>
class ParamObject : public com::Object<Interface> {
 public:
  using Record = RecordType;

  STDMETHODIMP get_flag(Flag* value) override { return GetValue(record_.flag, value); }
  STDMETHODIMP put_flag(Flag value) override { return PutValue(record_.flag, value); }
  STDMETHODIMP get_mycert(ICertId** value) override { return mycert_.get(value); }
  STDMETHODIMP putref_mycert(ICertId* value) override {
    HRESULT hr = mycert_.put(value);
    // Nothing leaves the record's pointer where it was, kept on purpose.
    if (CertId* id = mycert_.object()) record_.mycert = id->record();
    return hr;
  }

  /// The record as the engine is to see it, valid until the object changes.
  const Record* record() { return &record_; }

 protected:
  Record record_{};

 private:
  Held<CertId> mycert_;
};
