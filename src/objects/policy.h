// Policy: one certificate policy.
#pragma once

#include "com/object.h"
#include "engine/records.h"
#include "objects/fields.h"
#include "quivocom.h"

class Policy : public com::Object<IPolicy> {
 public:
  using Record = PolicyRecord;

  ~Policy();

  STDMETHODIMP get_oid(BSTR* value) override { return GetString(record_.oid, value); }
  STDMETHODIMP put_oid(BSTR value) override { return PutString(record_.oid, value); }
  STDMETHODIMP get_org_name(BSTR* value) override { return GetString(record_.org_name, value); }
  STDMETHODIMP put_org_name(BSTR value) override { return PutString(record_.org_name, value); }
  STDMETHODIMP get_not_num(LONG* value) override { return GetValue(record_.not_num, value); }
  STDMETHODIMP put_not_num(LONG value) override { return PutValue(record_.not_num, value); }
  STDMETHODIMP get_text(BSTR* value) override { return GetString(record_.text, value); }
  STDMETHODIMP put_text(BSTR value) override { return PutString(record_.text, value); }

  const PolicyRecord* record() const { return &record_; }
  /// Replaces the state by a copy of an engine record. E_OUTOFMEMORY.
  HRESULT copyFrom(const PolicyRecord& from);

 private:
  PolicyRecord record_{};
};
