// Times: seconds since 1970 UTC, as the records carry them, and the times of certificates.
#pragma once

#include <ctime>

#include "standin/base/openssl_owners.h"

namespace standin {

time_t currentTime();

/// 0 for a time that cannot be read; negative for times before 1970.
time_t secondsOf(const ASN1_TIME* time);

/// The form of the records: times before 1970 are 0, times after 2106 the largest value.
uint32_t recordTime(time_t seconds);

bool isWithinValidity(const X509* certificate, time_t at);

/// The period in which the private key may be used; a bound that the certificate does not state is 0.
struct KeyPeriod {
  time_t not_before = 0;
  time_t not_after = 0;
};
KeyPeriod privateKeyPeriod(const X509* certificate);
bool isWithinKeyPeriod(const X509* certificate, time_t at);

}  // namespace standin
