// Policy: one certificate policy.
#pragma once

#include "objects/record_object.h"

class Policy : public objects::RecordObject<IPolicy, PolicyRecord> {
 public:
  STDMETHODIMP get_oid(BSTR* value) override { return getText(record_.oid, value); }
  STDMETHODIMP put_oid(BSTR value) override { return putText(record_.oid, value); }
  STDMETHODIMP get_org_name(BSTR* value) override { return getText(record_.org_name, value); }
  STDMETHODIMP put_org_name(BSTR value) override { return putText(record_.org_name, value); }
  STDMETHODIMP get_not_num(LONG* value) override { return getNumber(record_.not_num, value); }
  STDMETHODIMP put_not_num(LONG value) override { return putNumber(record_.not_num, value); }
  STDMETHODIMP get_text(BSTR* value) override { return getText(record_.text, value); }
  STDMETHODIMP put_text(BSTR value) override { return putText(record_.text, value); }
};
