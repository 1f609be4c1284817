// The times of a certificate: seconds in the record, DATE in the properties, both UTC.
#include <cmath>
#include <cstdlib>

#include "contract/properties/properties.h"

namespace {

constexpr DATE kEpoch = 25569.0;
constexpr DATE kSecond = 1.1574074074074073e-5;
/// 2012-02-29 12:34:56 UTC.
constexpr uint32_t kLeapDay = 1330518896;
constexpr DATE kLeapDate = 40968.0 + 45296 * kSecond;

class CertificateTimeTest : public ContractTest, public ::testing::WithParamInterface<Property> {
 protected:
  void TearDown() override {
    _putenv("TZ=");
    _tzset();
  }
  void zone(const char* setting) {
    _putenv(setting);
    _tzset();
  }
  HRESULT put(DATE value) { return GetParam().put(certificate, value); }
  DATE get() { return get(certificate); }
  DATE get(IDispatch* object) {
    DATE value = -1;
    EXPECT_OK(GetParam().get(object, &value));
    return value;
  }
  uint32_t seconds() { return RecordOf(certificate).u32(GetParam().offset); }
  /// What the property shows for a time that the engine gave.
  DATE shown(uint32_t time) {
    fake::Snapshot record = RecordOf(Make<ICertificate>());
    std::memcpy(record.bytes.data() + GetParam().offset, &time, sizeof time);
    engine().on("QUIVO_ParseCert").record = record;
    Ptr<ICertificate> parsed;
    EXPECT_OK(openQuivo()->ParseCert(Variant(), Field_All, parsed.out()));
    return get(parsed);
  }

  Ptr<IDispatch> certificate = GetParam().make();
};

TEST_P(CertificateTimeTest, NewCertificateShowsTheEpoch) { EXPECT_EQ(25569.0, get()); }

TEST_P(CertificateTimeTest, SecondsAreShownAsDates) {
  EXPECT_DOUBLE_EQ(kEpoch, shown(0));
  EXPECT_DOUBLE_EQ(kEpoch + kSecond, shown(1));
  EXPECT_DOUBLE_EQ(kEpoch + 1, shown(86400));
  EXPECT_DOUBLE_EQ(kLeapDate, shown(kLeapDay));
}

TEST_P(CertificateTimeTest, YearsAndLeapYearsAreCounted) {
  EXPECT_DOUBLE_EQ(36526.0, shown(946684800));    // 2000-01-01
  EXPECT_DOUBLE_EQ(36585.0, shown(951782400));    // 2000-02-29
  EXPECT_DOUBLE_EQ(36586.0, shown(951868800));    // 2000-03-01
  EXPECT_DOUBLE_EQ(36891.0, shown(978220800));    // 2000-12-31
  EXPECT_DOUBLE_EQ(36892.0, shown(978307200));    // 2001-01-01
  EXPECT_DOUBLE_EQ(73110.0, shown(4107542400u));  // 2100-03-01, no leap year
}

TEST_P(CertificateTimeTest, SecondsHaveNoSign) {
  EXPECT_DOUBLE_EQ(75279.0 + 23295 * kSecond, shown(0xFFFFFFFF));  // 2106-02-07 06:28:15
  EXPECT_DOUBLE_EQ(50424.0 + 11648 * kSecond, shown(0x80000000));  // 2038-01-19 03:14:08
}

TEST_P(CertificateTimeTest, DateIsStoredAsSeconds) {
  EXPECT_OK(put(kLeapDate));
  EXPECT_EQ(kLeapDay, seconds());
  EXPECT_DOUBLE_EQ(kLeapDate, get());
}

TEST_P(CertificateTimeTest, EpochIsZero) {
  EXPECT_OK(put(kLeapDate));
  EXPECT_OK(put(kEpoch));
  EXPECT_EQ(0u, seconds());
}

TEST_P(CertificateTimeTest, DateIsRoundedToTheNearestSecond) {
  EXPECT_OK(put(kEpoch + 100 + 0.4 * kSecond));
  EXPECT_EQ(8640000u, seconds());
  EXPECT_OK(put(kEpoch + 100 + 0.6 * kSecond));
  EXPECT_EQ(8640001u, seconds());
  EXPECT_OK(put(kEpoch + 100 - 0.4 * kSecond));
  EXPECT_EQ(8640000u, seconds());
}

TEST_P(CertificateTimeTest, LastMomentOfADayIsKept) {
  EXPECT_OK(put(kEpoch + 364 + 86399 * kSecond));
  EXPECT_EQ(365u * 86400 - 1, seconds());
}

TEST_P(CertificateTimeTest, EveryDayOfALeapYearIsKept) {
  for (int day = 0; day < 366; ++day) {
    ASSERT_OK(put(36526.0 + day));
    ASSERT_EQ(946684800u + day * 86400u, seconds());
  }
}

TEST_P(CertificateTimeTest, TimeZoneOfTheMachineDoesNotMatter) {
  for (const char* setting : {"TZ=MSK-3", "TZ=EST5", "TZ=UTC0"}) {
    zone(setting);
    EXPECT_OK(put(kLeapDate));
    EXPECT_EQ(kLeapDay, seconds()) << setting;
    EXPECT_DOUBLE_EQ(kLeapDate, get()) << setting;
  }
}

TEST_P(CertificateTimeTest, SummerTimeDoesNotMatter) {
  zone("TZ=EST5EDT");
  EXPECT_OK(put(41091.5));  // 2012-07-01 12:00
  EXPECT_EQ(1341144000u, seconds());
}

TEST_P(CertificateTimeTest, DatesOutOfRangeAreRefused) {
  EXPECT_OK(put(kLeapDate));
  for (DATE wrong : {2958466.0, 2958465.5, -657435.0, 1e300, -1e300}) {
    EXPECT_HR(0x80070057u, put(wrong)) << wrong;
    EXPECT_EQ(kLeapDay, seconds());
  }
}

TEST_P(CertificateTimeTest, NotANumberIsRefused) {
  EXPECT_OK(put(kLeapDate));
  EXPECT_HR(E_INVALIDARG, put(std::nan("")));
  EXPECT_EQ(kLeapDay, seconds());
}

TEST_P(CertificateTimeTest, DatesBefore1970AreRefused) {
  EXPECT_OK(put(kLeapDate));
  for (DATE early : {25567.0, 0.0, -1.5, -657434.0}) {
    EXPECT_HR(E_INVALIDARG, put(early)) << early;
    EXPECT_EQ(kLeapDay, seconds());
  }
}

TEST_P(CertificateTimeTest, FirstHoursOf1970AreRefusedEastOfGreenwich) {
  zone("TZ=MSK-3");
  EXPECT_HR(E_INVALIDARG, put(kEpoch));
  EXPECT_OK(put(kEpoch + 3 * 3600 * kSecond));
  EXPECT_EQ(10800u, seconds());
  zone("TZ=EST5");
  EXPECT_OK(put(kEpoch));
  EXPECT_EQ(0u, seconds());
}

TEST_P(CertificateTimeTest, DateAfter2106LosesItsUpperHalf) {
  EXPECT_OK(put(kEpoch + 49710 + 23296 * kSecond));  // 2^32 seconds
  EXPECT_EQ(0u, seconds());
  EXPECT_OK(put(kEpoch + 49710 + 23301 * kSecond));
  EXPECT_EQ(5u, seconds());
}

TEST_P(CertificateTimeTest, NullPointerForTheDateIsRefused) {
  EXPECT_HR(E_POINTER, GetParam().get(certificate, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Properties, CertificateTimeTest, ::testing::ValuesIn(DateProperties()), NameOfProperty);

using TimeOrderTest = ContractTest;

TEST_F(TimeOrderTest, EndSetAfterTheStartStays) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_notBefore(kEpoch + 1));
  EXPECT_OK(certificate->put_notAfter(kEpoch + 2));
  EXPECT_EQ(86400u, RecordOf(certificate).u32(40));
  EXPECT_EQ(172800u, RecordOf(certificate).u32(44));
}

TEST_F(TimeOrderTest, StartSetAfterTheEndResetsIt) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_notAfter(kEpoch + 2));
  EXPECT_OK(certificate->put_notBefore(kEpoch + 1));
  DATE end = 0;
  EXPECT_OK(certificate->get_notAfter(&end));
  EXPECT_EQ(25569.0, end);
}

TEST_F(TimeOrderTest, PrivatePeriodBehavesAlike) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_notBeforePrivate(kEpoch + 1));
  EXPECT_OK(certificate->put_notAfterPrivate(kEpoch + 2));
  EXPECT_EQ(172800u, RecordOf(certificate).u32(72));
  EXPECT_OK(certificate->put_notBeforePrivate(kEpoch + 3));
  EXPECT_EQ(0u, RecordOf(certificate).u32(72));
}

TEST_F(TimeOrderTest, UpperHalfOfAStartBecomesTheEnd) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_notBefore(kEpoch + 49710 + 23301 * kSecond));
  EXPECT_EQ(5u, RecordOf(certificate).u32(40));
  EXPECT_EQ(1u, RecordOf(certificate).u32(44));
  EXPECT_OK(certificate->put_notBeforePrivate(kEpoch + 49710 + 23301 * kSecond));
  EXPECT_EQ(1u, RecordOf(certificate).u32(72));
}

TEST_F(TimeOrderTest, EndNeverTouchesTheIssuerIdentifier) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_issuerUID(Bstr(L"issuer")));
  EXPECT_OK(certificate->put_notAfter(kEpoch + 49710 + 23301 * kSecond));
  EXPECT_EQ("issuer", RecordOf(certificate).text(48));
  Bstr text;
  EXPECT_OK(certificate->get_issuerUID(text.inOut()));
  EXPECT_EQ(L"issuer", text.text());
}

TEST_F(TimeOrderTest, RefusedStartLeavesTheEnd) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_notAfter(kEpoch + 2));
  EXPECT_HR(E_INVALIDARG, certificate->put_notBefore(3e6));
  EXPECT_EQ(172800u, RecordOf(certificate).u32(44));
}

}  // namespace
