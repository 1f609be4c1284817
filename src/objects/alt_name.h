// AltName: the alternative name of an issuer or a subject.
#pragma once

#include "com/object.h"
#include "engine/records.h"
#include "objects/fields.h"
#include "quivocom.h"

class AltName : public com::Object<IAltName> {
 public:
  using Record = AltNameRecord;

  ~AltName();

  STDMETHODIMP get_emailAddress(BSTR* value) override { return GetString(record_.emailAddress, value); }
  STDMETHODIMP put_emailAddress(BSTR value) override { return PutString(record_.emailAddress, value); }
  STDMETHODIMP get_DNS(BSTR* value) override { return GetString(record_.DNS, value); }
  STDMETHODIMP put_DNS(BSTR value) override { return PutString(record_.DNS, value); }
  STDMETHODIMP get_URI(BSTR* value) override { return GetString(record_.URI, value); }
  STDMETHODIMP put_URI(BSTR value) override { return PutString(record_.URI, value); }
  STDMETHODIMP get_IP(BSTR* value) override { return GetString(record_.IP, value); }
  STDMETHODIMP put_IP(BSTR value) override { return PutString(record_.IP, value); }
  STDMETHODIMP get_organizationName(BSTR* value) override { return GetString(record_.organizationName, value); }
  STDMETHODIMP put_organizationName(BSTR value) override { return PutString(record_.organizationName, value); }
  STDMETHODIMP get_registredAddress(BSTR* value) override { return GetString(record_.registredAddress, value); }
  STDMETHODIMP put_registredAddress(BSTR value) override { return PutString(record_.registredAddress, value); }
  STDMETHODIMP get_surname(BSTR* value) override { return GetString(record_.surname, value); }
  STDMETHODIMP put_surname(BSTR value) override { return PutString(record_.surname, value); }
  STDMETHODIMP get_businessCategory(BSTR* value) override { return GetString(record_.businessCategory, value); }
  STDMETHODIMP put_businessCategory(BSTR value) override { return PutString(record_.businessCategory, value); }
  STDMETHODIMP get_telephoneNumber(BSTR* value) override { return GetString(record_.telephoneNumber, value); }
  STDMETHODIMP put_telephoneNumber(BSTR value) override { return PutString(record_.telephoneNumber, value); }
  STDMETHODIMP get_description(BSTR* value) override { return GetString(record_.description, value); }
  STDMETHODIMP put_description(BSTR value) override { return PutString(record_.description, value); }
  STDMETHODIMP get_account_number(BSTR* value) override { return GetString(record_.account_number, value); }
  STDMETHODIMP put_account_number(BSTR value) override { return PutString(record_.account_number, value); }
  STDMETHODIMP get_bank_id(BSTR* value) override { return GetString(record_.bank_id, value); }
  STDMETHODIMP put_bank_id(BSTR value) override { return PutString(record_.bank_id, value); }
  STDMETHODIMP get_physicalDelivery(BSTR* value) override { return GetString(record_.physicalDelivery, value); }
  STDMETHODIMP put_physicalDelivery(BSTR value) override { return PutString(record_.physicalDelivery, value); }
  STDMETHODIMP get_exchange_address(BSTR* value) override { return GetString(record_.exchange_address, value); }
  STDMETHODIMP put_exchange_address(BSTR value) override { return PutString(record_.exchange_address, value); }

  // Two slots behind those of IAltName that the type library does not describe.
  virtual STDMETHODIMP get_extraName(BSTR* value) { return GetString(record_.extraName, value); }
  virtual STDMETHODIMP put_extraName(BSTR value) { return PutString(record_.extraName, value); }

  const AltNameRecord* record() const { return &record_; }
  /// Replaces the state by a copy of an engine record. E_OUTOFMEMORY.
  HRESULT copyFrom(const AltNameRecord& from);

 private:
  AltNameRecord record_{};
};
