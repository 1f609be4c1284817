#include "standin/base/times.h"

#include <chrono>
#include <limits>

namespace standin {

time_t CurrentTime() { return std::time(nullptr); }

time_t SecondsOf(const ASN1_TIME* time) {
  std::tm parts{};
  if (time == nullptr || ASN1_TIME_to_tm(time, &parts) != 1) return 0;
  // The runtime's own conversion refuses some of the years that certificates state.
  using namespace std::chrono;
  const sys_days date = year(parts.tm_year + 1900) / month(static_cast<unsigned>(parts.tm_mon) + 1) /
                        day(static_cast<unsigned>(parts.tm_mday));
  return static_cast<time_t>(date.time_since_epoch().count()) * 86400 + parts.tm_hour * 3600 + parts.tm_min * 60 +
         parts.tm_sec;
}

uint32_t RecordTime(time_t seconds) {
  if (seconds <= 0) return 0;
  constexpr time_t kLargest = std::numeric_limits<uint32_t>::max();
  return static_cast<uint32_t>(seconds < kLargest ? seconds : kLargest);
}

bool IsWithinValidity(const X509* certificate, time_t at) {
  return SecondsOf(X509_get0_notBefore(certificate)) <= at && at <= SecondsOf(X509_get0_notAfter(certificate));
}

KeyPeriod PrivateKeyPeriod(const X509* certificate) {
  const Owned<PKEY_USAGE_PERIOD_free> period(
      static_cast<PKEY_USAGE_PERIOD*>(X509_get_ext_d2i(certificate, NID_private_key_usage_period, nullptr, nullptr)));
  KeyPeriod result;
  if (period == nullptr) return result;
  result.notBefore = SecondsOf(period->notBefore);
  result.notAfter = SecondsOf(period->notAfter);
  return result;
}

bool IsWithinKeyPeriod(const X509* certificate, time_t at) {
  const KeyPeriod period = PrivateKeyPeriod(certificate);
  if (period.notBefore != 0 && at < period.notBefore) return false;
  return period.notAfter == 0 || at <= period.notAfter;
}

}  // namespace standin
