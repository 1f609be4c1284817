// Successes of the engine with counts that nothing stands behind: a list without an array has no elements, whatever its
// count.
#include "callers.h"
#include "support/records.h"

namespace {

constexpr int32_t kCounts[] = {INT32_MIN, -1, 0, 1, 1000, 0x10000000, INT32_MAX};
constexpr uint32_t kLengths[] = {0, 1, 1000, 0x7FFFFFFF, 0xFFFFFFFF};

class OddBytesTest : public FaultTest, public ::testing::WithParamInterface<OperationArgument> {};

TEST_P(OddBytesTest, LengthWithoutBytesIsNothing) {
  for (const uint32_t length : kLengths) {
    for (const bool vbs : {false, true}) {
      const Objects objects(openQuivo());
      engine().on(GetParam().function).outputLength = length;
      Variant output;
      EXPECT_OK(GetParam().callInForm(objects, vbs, output.out())) << length;
      EXPECT_EQ(VT_EMPTY, output.type()) << length;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Outputs, OddBytesTest, ::testing::ValuesIn(OutputsOf(Output::kBytes)),
                         NameOfRow<OperationArgument>);

class OddListTest : public FaultTest, public ::testing::WithParamInterface<OperationArgument> {};

TEST_P(OddListTest, CountWithoutAnArrayIsNoElements) {
  for (const int32_t count : kCounts) {
    engine().on(GetParam().function).findCount = count;
    engine().on(GetParam().function).entryCount = count;
    Variant output;
    EXPECT_OK(GetParam().call(arguments(), output.out())) << count;
    EXPECT_EQ(0u, ObjectsOf(output).size()) << count;
  }
}

INSTANTIATE_TEST_SUITE_P(Outputs, OddListTest, ::testing::ValuesIn(OutputsOf(Output::kObjects)),
                         NameOfRow<OperationArgument>);

class OddResultTest : public FaultTest {
 protected:
  /// A certificate without anything but a count, at its offset in the record.
  static fake::Snapshot recordWith(size_t offset, uint32_t count) {
    fake::Snapshot record;
    record.bytes.resize(408);
    std::memcpy(record.bytes.data() + offset, &count, sizeof count);
    return record;
  }
  HRESULT parse(size_t offset, uint32_t count, Ptr<ICertificate>& certificate) {
    engine().on("QUIVO_ParseCert").record = recordWith(offset, count);
    return arguments().quivo->ParseCert(Variant(), Field_All, certificate.out());
  }
};

TEST_F(OddResultTest, CountsInACertificateWithoutArraysAreNoElements) {
  constexpr size_t kPolicies = 328, kUsages = 344, kExtensions = 360;
  for (const size_t offset : {kPolicies, kUsages, kExtensions}) {
    for (const int32_t count : kCounts) {
      Ptr<ICertificate> certificate;
      ASSERT_OK(parse(offset, static_cast<uint32_t>(count), certificate)) << offset << " " << count;
      EXPECT_EQ(0, RecordOf(certificate).i32(offset)) << offset << " " << count;
    }
  }
}

TEST_F(OddResultTest, LengthsInACertificateWithoutBytesAreNothing) {
  constexpr size_t kEncoded = 376, kHash = 392;
  for (const size_t offset : {kEncoded, kHash}) {
    for (const uint32_t length : kLengths) {
      Ptr<ICertificate> certificate;
      ASSERT_OK(parse(offset, length, certificate)) << offset << " " << length;
      EXPECT_EQ(0u, RecordOf(certificate).u32(offset)) << offset << " " << length;
    }
  }
}

TEST_F(OddResultTest, OwnCertificateWithoutARecordIsNotFound) {
  for (const int32_t count : kCounts) {
    engine().on("QUIVO_FindCert").findCount = count;
    Variant text;
    EXPECT_HR(E_FAIL, arguments().quivo->GetMyCertB64(text.out())) << count;
    EXPECT_HR(E_FAIL, arguments().quivo->CheckOID(Bstr(L"1.2.3"), text.out())) << count;
    EXPECT_EQ(L"Не найден рабочий сертификат", TextOf(text)) << count;
  }
}

TEST_F(OddResultTest, UsagesOfTheOwnCertificateWithoutAnArrayAreNone) {
  for (const int32_t count : kCounts) {
    engine().on("QUIVO_FindCert").certificates = {fake::Certificate{}};
    engine().on("QUIVO_FindCert").usageCount = count;
    Variant text;
    EXPECT_HR(E_FAIL, arguments().quivo->CheckOID(Bstr(L"1.2.3"), text.out())) << count;
    EXPECT_EQ(L"OID 1.2.3 отсутствует в рабочем сертификате", TextOf(text)) << count;
  }
}

TEST_F(OddResultTest, RecipientsWithoutAnArrayAreRefused) {
  for (const int32_t count : kCounts) {
    engine().on("QUIVO_FindCert").findCount = count;
    EXPECT_HR(0x80000057u, legacy().SetRecipients(Bstr(L"SMTP:a@b"))) << count;
  }
}

TEST_F(OddResultTest, NegativeCountOfRecipientsIsNobody) {
  engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=A")};
  for (const int32_t count : {INT32_MIN, -1, 0}) {
    engine().on("QUIVO_FindCert").findCount = count;
    EXPECT_OK(legacy().SetRecipients(Bstr(L"SMTP:a@b"))) << count;
    EXPECT_OK(legacy().Encrypt(Bstr(L"in"), Bstr(L"out")));
    EXPECT_EQ(0, engine().last().record(1).i32(16)) << count;
  }
  // What such a record points to stays the engine's.
  engine().releaseOutstanding();
}

TEST_F(OddResultTest, SheetOfAVerificationWithoutAnArrayIsShown) {
  for (const int32_t count : kCounts) {
    engine().on("QUIVO_VerifyFile").entryCount = count;
    EXPECT_OK(legacy().Verify(Bstr(L"in"), Bstr(L"out"))) << count;
  }
  EXPECT_EQ(std::size(kCounts), desktop.sheets.size());
}

}  // namespace
