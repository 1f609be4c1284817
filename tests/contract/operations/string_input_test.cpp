// How strings reach the engine: NUL-terminated, in the system's ANSI code page.
#include "support/operations.h"

namespace {

class StringInputTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  void SetUp() override { objects_.emplace(openQuivo()); }
  HRESULT pass(BSTR text) { return GetParam().call(*objects_, text); }
  fake::Text received() { return engine().only(GetParam().function).text(GetParam().argument); }

 private:
  std::optional<Objects> objects_;
};

TEST_P(StringInputTest, TextReachesTheEngine) {
  EXPECT_OK(pass(Bstr(L"C:\\folder\\name.txt")));
  EXPECT_EQ("C:\\folder\\name.txt", received());
}

TEST_P(StringInputTest, CyrillicIsInTheAnsiCodePage) {
  EXPECT_OK(pass(Bstr(L"\x041F\x0430\x043F\x043A\x0430")));
  EXPECT_EQ("\xCF\xE0\xEF\xEA\xE0", received());
}

TEST_P(StringInputTest, CharactersOutsideTheCodePageAreReplaced) {
  EXPECT_OK(
      pass(Bstr(L"a\x4E2D"
                L"b")));
  EXPECT_EQ("a?b", received());
}

TEST_P(StringInputTest, EmptyTextIsAnEmptyText) {
  EXPECT_OK(pass(Bstr(L"")));
  EXPECT_EQ("", received());
}

TEST_P(StringInputTest, TextEndsAtItsFirstNul) {
  EXPECT_OK(pass(Bstr(std::wstring(L"one\0two", 7))));
  EXPECT_EQ("one", received());
}

TEST_P(StringInputTest, NullTextIsANullPointerOrRefused) {
  if (GetParam().isOptional()) {
    EXPECT_OK(pass(nullptr));
    EXPECT_EQ(fake::Text{}, received());
  } else {
    EXPECT_HR(kInvalidArgument, pass(nullptr));
    EXPECT_EQ(0u, engine().count(GetParam().function));
  }
}

TEST_P(StringInputTest, BufferThatCannotBeAllocatedIsReported) {
  Bstr text(L"name");
  Module::get().failAllocation(0);
  EXPECT_HR(kOutOfMemory, pass(text));
  EXPECT_EQ(0u, engine().count(GetParam().function));
}

INSTANTIATE_TEST_SUITE_P(Arguments, StringInputTest, ::testing::ValuesIn(StringInputs()), NameOfRow<OperationArgument>);

using StringOrderTest = ContractTest;

TEST_F(StringOrderTest, LaterFailureWinsOverTheEarlier) {
  Ptr<IQUIVO> quivo = openQuivo();
  Variant hash;
  Bstr name(L"name");
  // The file name is converted first: it fails for want of memory, then the null algorithm fails too.
  Module::get().failAllocation(0);
  EXPECT_HR(kInvalidArgument, quivo->StrHashFile(nullptr, name, hash.out(), VARIANT_FALSE));
  EXPECT_TRUE(Module::get().allocationFailed());
}

TEST_F(StringOrderTest, FailureOfTheFirstIsNotForgotten) {
  Ptr<IQUIVO> quivo = openQuivo();
  Variant hash;
  EXPECT_HR(kInvalidArgument, quivo->StrHashFile(Bstr(L"algorithm"), nullptr, hash.out(), VARIANT_FALSE));
  EXPECT_EQ(0u, engine().count("QUIVO_StrHashFile"));
}

TEST_F(StringOrderTest, OutputFileIsConvertedAfterTheInputFile) {
  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IEncryptParam> param = Make<IEncryptParam>();
  Bstr name(L"name");
  Module::get().failAllocation(0);
  EXPECT_HR(kInvalidArgument, quivo->EncryptFile(param, name, nullptr));
}

TEST_F(StringOrderTest, OutputOfASignatureIsConvertedLast) {
  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<ISignParam> param = Make<ISignParam>();
  Bstr data(L"data"), signature(L"signature");
  Module::get().failAllocation(0);
  EXPECT_HR(kInvalidArgument, quivo->SignFile(param, data, signature, nullptr));
  EXPECT_TRUE(Module::get().allocationFailed());
}

TEST_F(StringOrderTest, VerifiedFileIsConvertedBeforeTheSignature) {
  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IVerifyParam> param = Make<IVerifyParam>();
  Variant results;
  Bstr data(L"data");
  Module::get().failAllocation(0);
  EXPECT_HR(kInvalidArgument, quivo->VerifyFile(param, data, nullptr, nullptr, results.out()));
  EXPECT_TRUE(Module::get().allocationFailed());
}

TEST_F(StringOrderTest, SignatureIsConvertedBeforeTheOutput) {
  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IVerifyParam> param = Make<IVerifyParam>();
  Variant results;
  Bstr output(L"output");
  Module::get().failAllocation(0);
  EXPECT_HR(kOutOfMemory, quivo->VerifyFile(param, nullptr, nullptr, output, results.out()));
}

TEST_F(StringOrderTest, DecryptedFileIsConvertedAfterTheInputFile) {
  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IDecryptParam> param = Make<IDecryptParam>();
  Ptr<ICertificate> certificate;
  Bstr name(L"name");
  Module::get().failAllocation(0);
  EXPECT_HR(kInvalidArgument, quivo->DecryptFile(param, name, nullptr, certificate.out()));
}

}  // namespace
