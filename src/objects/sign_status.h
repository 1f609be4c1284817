// SignStatus: the result of one signature, and the array of them that a verification returns.
#pragma once

#include "convert/dates.h"
#include "engine/owned.h"
#include "objects/certificate.h"

class SignStatus : public com::Object<ISignStatus>, objects::Properties {
 public:
  STDMETHODIMP get_status(LONG* value) override { return getNumber(status_, value); }
  STDMETHODIMP put_status(LONG value) override { return putNumber(status_, value); }
  STDMETHODIMP get_time(DATE* value) override { return getTime(time_, value); }
  // Checks the time and stores nothing: the signing time is the engine's. On purpose: "A time that cannot be
  // set" in docs/behaviour.md.
  STDMETHODIMP put_time(DATE value) override {
    int64_t ignored = 0;
    return convert::DateToUnixTime(value, &ignored);
  }
  STDMETHODIMP get_cert(ICertificate** value) override { return cert_.get(value); }
  STDMETHODIMP putref_cert(ICertificate* value) override { return cert_.put(value); }

  void setTime(uint32_t seconds) { time_ = seconds; }

 private:
  int32_t status_ = 0;
  uint32_t time_ = 0;
  objects::Held<Certificate> cert_;
};

namespace objects {

/// Builds `out` as an array of SignStatus objects, one per entry, and gives the engine's result back, also on failure;
/// `out` is then left as it was. A null result clears `out`.
HRESULT SignStatusArrayFromResult(engine::VerifyResult* result, VARIANT* out);

}  // namespace objects
