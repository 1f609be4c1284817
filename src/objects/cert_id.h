// CertId: names one certificate to the engine. Its state is the very record that the engine reads.
#pragma once

#include "com/object.h"
#include "objects/properties.h"
#include "quivocom.h"

class CertId : public com::Object<ICertId>, objects::Properties {
 public:
  CertId() { record_.type = kNoType; }
  ~CertId() { setType(kNoType); }

  STDMETHODIMP get_type(IdChoice_t* value) override;
  STDMETHODIMP put_type(IdChoice_t value) override;
  STDMETHODIMP get_issuer(BSTR* value) override;
  STDMETHODIMP put_issuer(BSTR value) override;
  STDMETHODIMP get_serialNumber(BSTR* value) override;
  STDMETHODIMP put_serialNumber(BSTR value) override;
  STDMETHODIMP get_keyId(BSTR* value) override;
  STDMETHODIMP put_keyId(BSTR value) override;
  STDMETHODIMP get_certHash(VARIANT* value) override;
  STDMETHODIMP put_certHash(VARIANT value) override;

  const CertIdRecord* record() const { return &record_; }

 private:
  // No type is chosen at first: a script assigns one before any other property.
  static constexpr int32_t kNoType = -1;

  bool is(IdChoice_t type) const { return record_.type == type; }
  void setType(int32_t type);

  CertIdRecord record_{};
};
