// LocalParam and RSrvParam: what a session is opened with. The PIN stays readable and in plain text for as long as the
// object lives, on purpose: "A readable PIN" in docs/behaviour.md.
#pragma once

#include "objects/record_object.h"

class LocalParam : public objects::RecordObject<ILocalParam, LocalParamRecord> {
 public:
  STDMETHODIMP get_pse(BSTR* value) override { return getText(record_.pse, value); }
  STDMETHODIMP put_pse(BSTR value) override { return putText(record_.pse, value); }
  STDMETHODIMP get_localstore(BSTR* value) override { return getText(record_.localstore, value); }
  STDMETHODIMP put_localstore(BSTR value) override { return putText(record_.localstore, value); }
  STDMETHODIMP get_ldap(BSTR* value) override { return getText(record_.ldap, value); }
  STDMETHODIMP put_ldap(BSTR value) override { return putText(record_.ldap, value); }
  STDMETHODIMP get_flag(Init_Flag_t* value) override { return getNumber(record_.flag, value); }
  STDMETHODIMP put_flag(Init_Flag_t value) override { return putNumber(record_.flag, value); }
  STDMETHODIMP get_pincode(BSTR* value) override { return getText(record_.pincode, value); }
  STDMETHODIMP put_pincode(BSTR value) override { return putText(record_.pincode, value); }
};

class RSrvParam : public objects::RecordObject<IRSrvParam, RSrvParamRecord> {
 public:
  STDMETHODIMP get_timeout(LONG* value) override { return getNumber(record_.timeout, value); }
  STDMETHODIMP put_timeout(LONG value) override { return putNumber(record_.timeout, value); }
  STDMETHODIMP get_flag(RSrv_Init_Flag_t* value) override { return getNumber(record_.flag, value); }
  STDMETHODIMP put_flag(RSrv_Init_Flag_t value) override { return putNumber(record_.flag, value); }
  STDMETHODIMP get_servers(VARIANT* value) override { return getTexts(record_.servers, record_.serverCount, value); }
  STDMETHODIMP put_servers(VARIANT value) override { return putTexts(record_.servers, record_.serverCount, value); }
};
