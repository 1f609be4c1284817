// FindParam: options of a search and its template.
#pragma once

#include "objects/certificate.h"
#include "objects/held.h"
#include "objects/param_object.h"

class FindParam : public objects::ParamObject<IFindParam, FindParamRecord, FindParamFlag_t> {
 public:
  STDMETHODIMP get_certTemplate(ICertificate** value) override { return certTemplate_.get(value); }
  STDMETHODIMP putref_certTemplate(ICertificate* value) override { return certTemplate_.put(value); }
  STDMETHODIMP get_info(Certinfo_t* value) override { return getNumber(record_.info, value); }
  STDMETHODIMP put_info(Certinfo_t value) override { return putNumber(record_.info, value); }

  /// The record with the template copied again.
  const FindParamRecord* record() {
    if (Certificate* certificate = certTemplate_.object()) record_.certTemplate = *certificate->record();
    return &record_;
  }

 private:
  objects::Held<Certificate> certTemplate_;
};
