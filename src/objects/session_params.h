// LocalParam and RSrvParam: what a session is opened with. The PIN stays readable and in plain text for as
// long as the object lives: existing scripts read it back.
#pragma once

#include "com/object.h"
#include "engine/records.h"
#include "objects/fields.h"
#include "quivocom.h"

class LocalParam : public com::Object<ILocalParam> {
 public:
  LocalParam() { record_.size = sizeof(record_); }
  ~LocalParam() {
    for (char** text : {&record_.pse, &record_.localstore, &record_.ldap, &record_.pincode}) Reset(*text);
  }

  STDMETHODIMP get_pse(BSTR* value) override { return GetString(record_.pse, value); }
  STDMETHODIMP put_pse(BSTR value) override { return PutString(record_.pse, value); }
  STDMETHODIMP get_localstore(BSTR* value) override { return GetString(record_.localstore, value); }
  STDMETHODIMP put_localstore(BSTR value) override { return PutString(record_.localstore, value); }
  STDMETHODIMP get_ldap(BSTR* value) override { return GetString(record_.ldap, value); }
  STDMETHODIMP put_ldap(BSTR value) override { return PutString(record_.ldap, value); }
  STDMETHODIMP get_flag(Init_Flag_t* value) override { return GetValue(record_.flag, value); }
  STDMETHODIMP put_flag(Init_Flag_t value) override { return PutValue(record_.flag, value); }
  STDMETHODIMP get_pincode(BSTR* value) override { return GetString(record_.pincode, value); }
  STDMETHODIMP put_pincode(BSTR value) override { return PutString(record_.pincode, value); }

  const LocalParamRecord* record() const { return &record_; }

 private:
  LocalParamRecord record_{};
};

class RSrvParam : public com::Object<IRSrvParam> {
 public:
  RSrvParam() { record_.size = sizeof(record_); }
  ~RSrvParam() { Reset(record_.servers, record_.serverCount); }

  STDMETHODIMP get_timeout(LONG* value) override { return GetValue(record_.timeout, value); }
  STDMETHODIMP put_timeout(LONG value) override { return PutValue(record_.timeout, value); }
  STDMETHODIMP get_flag(RSrv_Init_Flag_t* value) override { return GetValue(record_.flag, value); }
  STDMETHODIMP put_flag(RSrv_Init_Flag_t value) override { return PutValue(record_.flag, value); }
  STDMETHODIMP get_servers(VARIANT* value) override { return GetStrings(record_.servers, record_.serverCount, value); }
  STDMETHODIMP put_servers(VARIANT value) override { return PutStrings(record_.servers, record_.serverCount, value); }

  const RSrvParamRecord* record() const { return &record_; }

 private:
  RSrvParamRecord record_{};
};
