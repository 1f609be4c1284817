// Extension: one certificate extension.
#pragma once

#include "objects/record_object.h"

class Extension : public objects::RecordObject<IExtension, ExtensionRecord> {
 public:
  STDMETHODIMP get_oid(BSTR* value) override { return getText(record_.oid, value); }
  STDMETHODIMP put_oid(BSTR value) override { return putText(record_.oid, value); }
  STDMETHODIMP get_type(LONG* value) override { return getNumber(record_.type, value); }
  STDMETHODIMP put_type(LONG value) override { return putNumber(record_.type, value); }
  STDMETHODIMP get_critical(LONG* value) override { return getNumber(record_.critical, value); }
  STDMETHODIMP put_critical(LONG value) override { return putNumber(record_.critical, value); }
  STDMETHODIMP get_data(VARIANT* value) override { return getBytes(record_.data, value); }
  STDMETHODIMP put_data(VARIANT value) override { return putBytes(record_.data, value); }
};
