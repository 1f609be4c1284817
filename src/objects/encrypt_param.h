// EncryptParam: options of encryption and the receivers.
#pragma once

#include "objects/certificate.h"
#include "objects/object_array.h"
#include "objects/param_object.h"

class EncryptParam : public objects::ParamObject<IEncryptParam, EncryptParamRecord, EncryptParamFlag_t> {
 public:
  STDMETHODIMP get_Receivers(VARIANT* value) override { return receivers_.get(value); }
  STDMETHODIMP put_Receivers(VARIANT value) override { return receivers_.putAlsoVariants(value); }

  /// The record with the receivers copied again.
  const EncryptParamRecord* record() {
    receivers_.refresh(record_.receivers, record_.receiverCount);
    return &record_;
  }

 private:
  objects::ObjectArray<Certificate> receivers_;
};
