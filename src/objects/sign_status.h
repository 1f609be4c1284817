// SignStatus: the result of one signature, and the array of them that a verification returns.
#pragma once

#include "com/object.h"
#include "convert/dates.h"
#include "engine/functions.h"
#include "objects/certificate.h"
#include "objects/fields.h"
#include "objects/held.h"
#include "quivocom.h"

class SignStatus : public com::Object<ISignStatus> {
 public:
  STDMETHODIMP get_status(LONG* value) override { return GetValue(status_, value); }
  STDMETHODIMP put_status(LONG value) override { return PutValue(status_, value); }
  STDMETHODIMP get_time(DATE* value) override { return GetTime(time_, value); }
  // Checks the time and stores nothing, kept on purpose: the signing time is the engine's.
  STDMETHODIMP put_time(DATE value) override {
    int64_t ignored = 0;
    return DateToUnixTime(value, &ignored);
  }
  STDMETHODIMP get_cert(ICertificate** value) override { return cert_.get(value); }
  STDMETHODIMP putref_cert(ICertificate* value) override { return cert_.put(value); }

  void setTime(uint32_t seconds) { time_ = seconds; }

 private:
  int32_t status_ = 0;
  uint32_t time_ = 0;
  Held<Certificate> cert_;
};

/// Builds `out` as an array of SignStatus objects, one an entry, and gives the engine's result back, also on
/// failure; `out` is then left as it was. A null result clears `out`.
HRESULT SignStatusArrayFromResult(EngineSession session, VerifyResultRecord* result, VARIANT* out);
