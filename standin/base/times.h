// Times as seconds since 1970 UTC, and the times of certificates.
#pragma once

#include <ctime>

#include "standin/base/openssl_owners.h"

namespace standin {

time_t CurrentTime();

/// 0 for a time that cannot be read; negative for times before 1970.
time_t SecondsOf(const ASN1_TIME* time);

/// A time for a record: 0 for times before 1970, the largest value for times after 2106.
uint32_t RecordTime(time_t seconds);

bool IsWithinValidity(const X509* certificate, time_t at);

/// The period of the private key; 0 for a bound that the certificate does not state.
struct KeyPeriod {
  time_t notBefore = 0;
  time_t notAfter = 0;
};
KeyPeriod PrivateKeyPeriod(const X509* certificate);
bool IsWithinKeyPeriod(const X509* certificate, time_t at);

}  // namespace standin
