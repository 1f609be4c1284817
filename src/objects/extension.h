// Extension: one certificate extension.
#pragma once

#include "com/object.h"
#include "engine/records.h"
#include "objects/fields.h"
#include "quivocom.h"

class Extension : public com::Object<IExtension> {
 public:
  using Record = ExtensionRecord;

  ~Extension();

  STDMETHODIMP get_oid(BSTR* value) override { return GetString(record_.oid, value); }
  STDMETHODIMP put_oid(BSTR value) override { return PutString(record_.oid, value); }
  STDMETHODIMP get_type(LONG* value) override { return GetValue(record_.type, value); }
  STDMETHODIMP put_type(LONG value) override { return PutValue(record_.type, value); }
  STDMETHODIMP get_critical(LONG* value) override { return GetValue(record_.critical, value); }
  STDMETHODIMP put_critical(LONG value) override { return PutValue(record_.critical, value); }
  STDMETHODIMP get_data(VARIANT* value) override { return GetBytes(record_.data, value); }
  STDMETHODIMP put_data(VARIANT value) override { return PutBytes(record_.data, value); }

  const ExtensionRecord* record() const { return &record_; }
  /// Replaces the state by a copy of an engine record. E_OUTOFMEMORY.
  HRESULT copyFrom(const ExtensionRecord& from);

 private:
  ExtensionRecord record_{};
};
