// Times: seconds since 1970 UTC to DATE and back.
#include "convert/dates.h"

#include <gtest/gtest.h>
#include <time.h>

#include <cmath>
#include <limits>

using namespace convert;

namespace {

DATE DateOf(uint32_t seconds) {
  DATE date = 0;
  EXPECT_EQ(UnixTimeToDate(seconds, &date), S_OK);
  return date;
}

int64_t SecondsOf(DATE date) {
  int64_t seconds = -1;
  EXPECT_EQ(DateToUnixTime(date, &seconds), S_OK);
  return seconds;
}

constexpr DATE kDay1970 = 25569.0;

TEST(UnixTimeToDate, TellsTheEpoch) { EXPECT_EQ(DateOf(0), kDay1970); }

TEST(UnixTimeToDate, TellsTheTimeOfTheDayAsAFraction) { EXPECT_DOUBLE_EQ(DateOf(43200), kDay1970 + 0.5); }

TEST(UnixTimeToDate, CountsLeapDays) {
  EXPECT_EQ(DateOf(951782400), 36585.0);   // 2000-02-29
  EXPECT_EQ(DateOf(951868800), 36586.0);   // 2000-03-01
  EXPECT_EQ(DateOf(946684800), 36526.0);   // 2000-01-01
  EXPECT_EQ(DateOf(4107542400), 73110.0);  // 2100-03-01, no leap year
}

TEST(UnixTimeToDate, KnowsTheLengthOfEveryMonth) {
  const int firstDays[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  for (int days : firstDays) EXPECT_EQ(DateOf(1672531200u + 86400u * static_cast<uint32_t>(days)), 44927 + days);
  // In a leap year, from March on.
  for (int days : firstDays) {
    const int day = days + (days > 31 ? 1 : 0);
    EXPECT_EQ(DateOf(1704067200u + 86400u * static_cast<uint32_t>(day)), 45292 + day);
  }
}

TEST(UnixTimeToDate, ReachesTheLastSecondOfThirtyTwoBits) {
  EXPECT_DOUBLE_EQ(DateOf(0xFFFFFFFF), kDay1970 + 4294967295.0 / 86400);
}

TEST(DateToUnixTime, IsTheReverse) {
  for (uint32_t seconds : {86400u, 951782399u, 951782400u, 1700000001u, 2147483648u, 4294967295u})
    EXPECT_EQ(SecondsOf(DateOf(seconds)), seconds);
}

TEST(DateToUnixTime, RoundsToTheNearestSecond) {
  EXPECT_EQ(SecondsOf(40000.0 + 1.4 / 86400), SecondsOf(40000.0) + 1);
  EXPECT_EQ(SecondsOf(40000.0 - 0.4 / 86400), SecondsOf(40000.0));
}

TEST(DateToUnixTime, ReadsSummerTimesAsUtcToo) { EXPECT_EQ(SecondsOf(DateOf(1720000000)), 1720000000); }

TEST(DateToUnixTime, ReadsTheDateAsUtcWhateverTheTimeZone) {
  _putenv("TZ=XYZ-3XYS");
  EXPECT_EQ(SecondsOf(DateOf(1720000000)), 1720000000);
  EXPECT_EQ(SecondsOf(DateOf(1700000000)), 1700000000);
  _putenv("TZ=");
  _tzset();
}

TEST(DateToUnixTime, GivesTimesBeyondThirtyTwoBits) { EXPECT_EQ(SecondsOf(kDay1970 + 60000), 60000LL * 86400); }

TEST(DateToUnixTime, RefusesDatesOutsideTheAutomationRange) {
  int64_t seconds = 0;
  EXPECT_EQ(DateToUnixTime(2958466.0, &seconds), E_INVALIDARG);
  EXPECT_EQ(DateToUnixTime(-657435.0, &seconds), E_INVALIDARG);
  EXPECT_EQ(DateToUnixTime(std::numeric_limits<double>::quiet_NaN(), &seconds), E_INVALIDARG);
  EXPECT_EQ(DateToUnixTime(std::numeric_limits<double>::infinity(), &seconds), E_INVALIDARG);
}

TEST(DateToUnixTime, RefusesDatesBefore1970) {
  int64_t seconds = 0;
  EXPECT_EQ(DateToUnixTime(20000.0, &seconds), E_INVALIDARG);
  EXPECT_EQ(DateToUnixTime(-1.25, &seconds), E_INVALIDARG);
}

}  // namespace
