// Hashing and random numbers; the forms of inputs and outputs are tested for all methods at once elsewhere.
#include "support/records.h"

namespace {

using HashTest = ContractTest;

TEST_F(HashTest, FailedUnlockWinsThoughTheHashIsWritten) {
  Variant data = ByteArray({1}), hash;
  engine().on("QUIVO_HashMem").output = {9};
  engine().on("QUIVO_HashMem").during = [&] { data.safeArray()->cLocks = 0; };
  EXPECT_HR(E_UNEXPECTED, openQuivo()->HashMem(data, hash.out()));
  data.safeArray()->cLocks = 0;
  EXPECT_EQ((Bytes{9}), PlainBytesOf(hash));
}

TEST_F(HashTest, AlgorithmStandsBeforeThePath) {
  Variant hash;
  EXPECT_OK(openQuivo()->StrHashFile(Bstr(L"algorithm"), Bstr(L"file"), hash.out(), VARIANT_FALSE));
  const fake::Call& call = engine().only("QUIVO_StrHashFile");
  EXPECT_EQ("algorithm", call.text(1));
  EXPECT_EQ("file", call.text(2));
}

TEST_F(HashTest, AnyNonZeroFlagAsksForVbsForm) {
  for (VARIANT_BOOL flag : {VARIANT_TRUE, static_cast<VARIANT_BOOL>(1), static_cast<VARIANT_BOOL>(0x0100)}) {
    Variant hash;
    engine().on("QUIVO_StrHashFile").output = {9};
    EXPECT_OK(openQuivo()->StrHashFile(Bstr(L"a"), Bstr(L"f"), hash.out(), flag));
    EXPECT_EQ((Bytes{9}), VbsBytesOf(hash));
  }
}

TEST_F(HashTest, FlagsOfExportAndRequestsCountAlike) {
  Variant out, request;
  engine().on("QUIVO_ExportMem").output = {9};
  EXPECT_OK(openQuivo()->ExportMem(Make<IExportParam>(), out.out(), 1));
  EXPECT_EQ((Bytes{9}), VbsBytesOf(out));
  engine().on("QUIVO_CreateXmlRequest").output = {9};
  EXPECT_OK(openQuivo()->CreateXmlRequest(Flag_Xml_Request_Do_Not_Generate, Make<ICertificate>(), request.out(), 1));
  EXPECT_EQ((Bytes{9}), VbsBytesOf(request));
}

TEST_F(HashTest, HashOfAFileIsNeverInVbsForm) {
  Variant hash = VbsByteArray({1});
  engine().on("QUIVO_HashFile").output = {9};
  EXPECT_OK(openQuivo()->HashFile(Bstr(L"file"), hash.out()));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(hash));
}

TEST_F(HashTest, EveryLengthOfRandomBytesReachesTheEngine) {
  Ptr<IQUIVO> quivo = openQuivo();
  for (long length : {0L, -1L, 16L, static_cast<long>(INT32_MAX), static_cast<long>(INT32_MIN)}) {
    engine().forgetCalls();
    Variant random;
    EXPECT_OK(quivo->GenRandom(length, random.out()));
    EXPECT_EQ(length, engine().only("QUIVO_GenRandom").number(1));
  }
}

TEST_F(HashTest, NoRandomBytesLeaveAnEmptyVariant) {
  Variant random = Variant::text(L"before");
  EXPECT_OK(openQuivo()->GenRandom(0, random.out()));
  EXPECT_EQ(VT_EMPTY, random.type());
}

TEST_F(HashTest, LargeOutputsAreCopiedWhole) {
  Bytes large(1 << 20);
  for (size_t i = 0; i < large.size(); ++i) large[i] = static_cast<uint8_t>(i * 7);
  engine().on("QUIVO_GenRandom").output = large;
  Variant random;
  EXPECT_OK(openQuivo()->GenRandom(1 << 20, random.out()));
  EXPECT_EQ(large, PlainBytesOf(random));
}

}  // namespace
