#include "convert/dates.h"

#include <cmath>
#include <ctime>

namespace convert {

namespace {

constexpr double kSecond = 1.1574074074074073e-5;
constexpr double kHalfSecond = 5.787037037037037e-6;
constexpr DATE kLastDate = 2958465.0;
constexpr DATE kFirstDate = -657434.0;
constexpr long kDaysToEpochOfDates = 693959;  // day 0 of DATE is 1899-12-30

const int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

bool IsLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysIn(int year, int month) {
  return kDaysBefore[month] - kDaysBefore[month - 1] + (month == 2 && IsLeap(year) ? 1 : 0);
}

bool IsValid(const tm& time) {
  int year = time.tm_year + 1900;
  int month = time.tm_mon + 1;
  return year <= 9999 && month >= 1 && month <= 12 && time.tm_mday >= 1 && time.tm_mday <= DaysIn(year, month) &&
         time.tm_hour <= 23 && time.tm_min <= 59 && time.tm_sec <= 59;
}

DATE ToDate(const tm& time) {
  long year = time.tm_year + 1900;
  int month = time.tm_mon + 1;
  long day =
      time.tm_mday + 365 * year + year / 4 - year / 100 + year / 400 + kDaysBefore[month - 1] - kDaysToEpochOfDates;
  if (month <= 2 && IsLeap(static_cast<int>(year))) --day;
  double fraction = (3600L * time.tm_hour + 60L * time.tm_min + time.tm_sec) * kSecond;
  return day < 0 ? day - fraction : day + fraction;
}

/// Splits a DATE whose half second has been added into Gregorian parts.
tm Split(DATE date) {
  double wholeDays = std::trunc(date);
  long seconds = static_cast<long>(std::fabs(date - wholeDays) * 86400.0);
  // Days since 0000-03-01, so that a leap day ends its year.
  long days = static_cast<long>(wholeDays) + kDaysToEpochOfDates - 60;
  long era = (days >= 0 ? days : days - 146096) / 146097;
  long dayOfEra = days - era * 146097;
  long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  long shifted = (5 * dayOfYear + 2) / 153;
  tm time{};
  time.tm_mday = static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1);
  time.tm_mon = static_cast<int>(shifted < 10 ? shifted + 2 : shifted - 10);
  time.tm_year = static_cast<int>(yearOfEra + era * 400 + (time.tm_mon <= 1 ? 1 : 0) - 1900);
  time.tm_hour = static_cast<int>(seconds / 3600);
  time.tm_min = static_cast<int>(seconds / 60 % 60);
  time.tm_sec = static_cast<int>(seconds % 60);
  return time;
}

}  // namespace

HRESULT UnixTimeToDate(uint32_t seconds, DATE* date) {
  __time64_t wide = seconds;
  const tm* time = _gmtime64(&wide);
  if (!time || !IsValid(*time)) return E_INVALIDARG;
  *date = ToDate(*time);
  return S_OK;
}

HRESULT DateToUnixTime(DATE date, int64_t* seconds) {
  // Written so that a NaN is refused too.
  if (!(date <= kLastDate && date >= kFirstDate)) return E_INVALIDARG;
  tm time = Split(date + (date > 0 ? kHalfSecond : -kHalfSecond));
  _tzset();
  __time64_t local = _mktime64(&time);
  // The runtime converts nothing before 1970.
  if (local < 0) return E_INVALIDARG;
  *seconds = local - _timezone;
  return S_OK;
}

}  // namespace convert
