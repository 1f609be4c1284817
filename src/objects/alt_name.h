// AltName: the alternative name of an issuer or a subject.
#pragma once

#include "objects/record_object.h"

class AltName : public objects::RecordObject<IAltName, AltNameRecord> {
 public:
  STDMETHODIMP get_emailAddress(BSTR* value) override { return getText(record_.emailAddress, value); }
  STDMETHODIMP put_emailAddress(BSTR value) override { return putText(record_.emailAddress, value); }
  STDMETHODIMP get_DNS(BSTR* value) override { return getText(record_.DNS, value); }
  STDMETHODIMP put_DNS(BSTR value) override { return putText(record_.DNS, value); }
  STDMETHODIMP get_URI(BSTR* value) override { return getText(record_.URI, value); }
  STDMETHODIMP put_URI(BSTR value) override { return putText(record_.URI, value); }
  STDMETHODIMP get_IP(BSTR* value) override { return getText(record_.IP, value); }
  STDMETHODIMP put_IP(BSTR value) override { return putText(record_.IP, value); }
  STDMETHODIMP get_organizationName(BSTR* value) override { return getText(record_.organizationName, value); }
  STDMETHODIMP put_organizationName(BSTR value) override { return putText(record_.organizationName, value); }
  STDMETHODIMP get_registredAddress(BSTR* value) override { return getText(record_.registredAddress, value); }
  STDMETHODIMP put_registredAddress(BSTR value) override { return putText(record_.registredAddress, value); }
  STDMETHODIMP get_surname(BSTR* value) override { return getText(record_.surname, value); }
  STDMETHODIMP put_surname(BSTR value) override { return putText(record_.surname, value); }
  STDMETHODIMP get_businessCategory(BSTR* value) override { return getText(record_.businessCategory, value); }
  STDMETHODIMP put_businessCategory(BSTR value) override { return putText(record_.businessCategory, value); }
  STDMETHODIMP get_telephoneNumber(BSTR* value) override { return getText(record_.telephoneNumber, value); }
  STDMETHODIMP put_telephoneNumber(BSTR value) override { return putText(record_.telephoneNumber, value); }
  STDMETHODIMP get_description(BSTR* value) override { return getText(record_.description, value); }
  STDMETHODIMP put_description(BSTR value) override { return putText(record_.description, value); }
  STDMETHODIMP get_account_number(BSTR* value) override { return getText(record_.account_number, value); }
  STDMETHODIMP put_account_number(BSTR value) override { return putText(record_.account_number, value); }
  STDMETHODIMP get_bank_id(BSTR* value) override { return getText(record_.bank_id, value); }
  STDMETHODIMP put_bank_id(BSTR value) override { return putText(record_.bank_id, value); }
  STDMETHODIMP get_physicalDelivery(BSTR* value) override { return getText(record_.physicalDelivery, value); }
  STDMETHODIMP put_physicalDelivery(BSTR value) override { return putText(record_.physicalDelivery, value); }
  STDMETHODIMP get_exchange_address(BSTR* value) override { return getText(record_.exchange_address, value); }
  STDMETHODIMP put_exchange_address(BSTR value) override { return putText(record_.exchange_address, value); }

  // Two slots behind those of IAltName that the type library does not describe.
  virtual STDMETHODIMP get_extraName(BSTR* value) { return getText(record_.extraName, value); }
  virtual STDMETHODIMP put_extraName(BSTR value) { return putText(record_.extraName, value); }
};
