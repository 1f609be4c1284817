// Times: seconds since 1970 UTC, as the records carry them, and the times of certificates.
#pragma once

#include <ctime>

#include "standin/base/openssl_owners.h"

namespace standin {

time_t CurrentTime();

/// 0 for a time that cannot be read; negative for times before 1970.
time_t SecondsOf(const ASN1_TIME* time);

/// The form of the records: times before 1970 are 0, times after 2106 the largest value.
uint32_t RecordTime(time_t seconds);

bool IsWithinValidity(const X509* certificate, time_t at);

/// The period in which the private key may be used; a bound that the certificate does not state is 0.
struct KeyPeriod {
  time_t not_before = 0;
  time_t not_after = 0;
};
KeyPeriod PrivateKeyPeriod(const X509* certificate);
bool IsWithinKeyPeriod(const X509* certificate, time_t at);

}  // namespace standin
