// VerifyParam: options of verification and what is required of the signers' certificates.
#pragma once

#include "objects/extension.h"
#include "objects/object_array.h"
#include "objects/param_object.h"
#include "objects/policy.h"

class VerifyParam : public objects::ParamObject<IVerifyParam, VerifyParamRecord, VerifyParamFlag_t> {
 public:
  STDMETHODIMP get_keyUsage(Keyusage_t* value) override { return getNumber(record_.keyUsage, value); }
  STDMETHODIMP put_keyUsage(Keyusage_t value) override { return putNumber(record_.keyUsage, value); }
  STDMETHODIMP get_policies(VARIANT* value) override { return policies_.get(value); }
  STDMETHODIMP put_policies(VARIANT value) override { return policies_.put(value); }
  STDMETHODIMP get_extKeyUsage(VARIANT* value) override {
    return getTexts(record_.extKeyUsage, record_.extKeyUsageCount, value);
  }
  STDMETHODIMP put_extKeyUsage(VARIANT value) override {
    return putTexts(record_.extKeyUsage, record_.extKeyUsageCount, value);
  }
  STDMETHODIMP get_extensions(VARIANT* value) override { return extensions_.get(value); }
  STDMETHODIMP put_extensions(VARIANT value) override { return extensions_.put(value); }
  STDMETHODIMP get_nSignToDelete(LONG* value) override { return getNumber(record_.nSignToDelete, value); }
  STDMETHODIMP put_nSignToDelete(LONG value) override { return putNumber(record_.nSignToDelete, value); }
  STDMETHODIMP get_minsigns(LONG* value) override { return getNumber(record_.minsigns, value); }
  STDMETHODIMP put_minsigns(LONG value) override { return putNumber(record_.minsigns, value); }
  STDMETHODIMP get_info(Certinfo_t* value) override { return getNumber(record_.info, value); }
  STDMETHODIMP put_info(Certinfo_t value) override { return putNumber(record_.info, value); }

  /// The record with policies and extensions copied again.
  const VerifyParamRecord* record() {
    policies_.refresh(record_.policies, record_.policyCount);
    extensions_.refresh(record_.extensions, record_.extensionCount);
    return &record_;
  }

 private:
  objects::ObjectArray<Policy> policies_;
  objects::ObjectArray<Extension> extensions_;
};
