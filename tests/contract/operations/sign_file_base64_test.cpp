// Signing a file for scripts: the signature as Base64 text, or a text that explains the failure.
#include "support/malloc_spy.h"
#include "support/records.h"
#include "support/temp_file.h"

namespace {

constexpr uint32_t kFailed = 0xFFFFFFFF;

class SignFileBase64Test : public ContractTest {
 protected:
  void SetUp() override {
    quivo_ = openQuivo();
    param_ = Make<ISignParam>();
    engine().on("QUIVO_SignMem").output = {1, 2, 3};
    engine().on("QUIVO_EncodeMem").text = "AQID";
  }
  HRESULT sign(const std::wstring& path) {
    return quivo_->SignFile2B64Mem(param_, Bstr(path), signature.out(), text.out());
  }
  Ptr<IQUIVO>& quivo() { return quivo_; }
  Ptr<ISignParam>& param() { return param_; }

  Variant signature, text;
  std::wstring missing = L"C:\\no such folder\\файл.txt";

 private:
  Ptr<IQUIVO> quivo_;
  Ptr<ISignParam> param_;
};

TEST_F(SignFileBase64Test, WholeFileIsSigned) {
  TempFile file({10, 20, 30});
  EXPECT_OK(param()->put_flag(Flag_Sign_Detached));
  EXPECT_OK(sign(file.path()));
  const fake::Call& call = engine().only("QUIVO_SignMem");
  EXPECT_EQ(2u, call.record(1).u32(0));
  EXPECT_EQ((Bytes{10, 20, 30}), call.blobBytes(2));
  EXPECT_EQ(0u, call.blobLength(3));
  EXPECT_EQ(0u, call.blobData(3));
  EXPECT_TRUE(call.record(4).allZero());
}

TEST_F(SignFileBase64Test, SignatureIsEncoded) {
  TempFile file({10});
  EXPECT_OK(sign(file.path()));
  const fake::Call& call = engine().only("QUIVO_EncodeMem");
  EXPECT_EQ((Bytes{1, 2, 3}), call.argument(1).target.bytes);
  EXPECT_EQ(3, call.number(2));
  EXPECT_EQ(L"AQID", TextOf(signature));
  EXPECT_EQ(VT_EMPTY, text.type());
}

TEST_F(SignFileBase64Test, TextIsOverLongOnPurpose) {
  TempFile file({10});
  EXPECT_OK(sign(file.path()));
  ASSERT_EQ(VT_BSTR, signature.type());
  EXPECT_EQ(2u * 4 + 2, SysStringLen(V_BSTR(&signature.get())));
}

TEST_F(SignFileBase64Test, BufferIsGivenBackAfterTheEncoding) {
  TempFile file({10});
  EXPECT_OK(sign(file.path()));
  EXPECT_EQ((std::vector<std::string>{"QUIVO_SignMem", "QUIVO_EncodeMem", "QUIVO_FreeMem"}), engine().names());
}

TEST_F(SignFileBase64Test, EmptyFileIsSigned) {
  TempFile file({});
  EXPECT_OK(sign(file.path()));
  EXPECT_EQ(0u, engine().only("QUIVO_SignMem").blobLength(2));
}

TEST_F(SignFileBase64Test, FileIsClosedAfterwards) {
  TempFile file({10});
  EXPECT_OK(sign(file.path()));
  EXPECT_TRUE(file.closed());
}

TEST_F(SignFileBase64Test, FileIsReadBesideOtherReaders) {
  TempFile file({10});
  const HANDLE other =
      CreateFileW(file.path().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_OK(sign(file.path()));
  CloseHandle(other);
}

TEST_F(SignFileBase64Test, MissingFileIsExplained) {
  TempFile gone({1});
  const std::wstring path = gone.path() + L".missing";
  EXPECT_HR(kFailed, sign(path));
  EXPECT_EQ(L"Не удалось прочитать файл " + path + L". Ошибка 2.", TextOf(text));
  EXPECT_EQ(VT_EMPTY, signature.type());
  EXPECT_EQ(0u, engine().count("QUIVO_SignMem"));
}

TEST_F(SignFileBase64Test, MissingFolderIsExplained) {
  EXPECT_HR(kFailed, sign(missing));
  EXPECT_EQ(L"Не удалось прочитать файл " + missing + L". Ошибка 3.", TextOf(text));
}

TEST_F(SignFileBase64Test, FileInUseIsExplained) {
  TempFile file({1});
  const HANDLE writer = CreateFileW(file.path().c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_HR(kFailed, sign(file.path()));
  EXPECT_EQ(L"Не удалось прочитать файл " + file.path() + L". Ошибка 32.", TextOf(text));
  CloseHandle(writer);
}

TEST_F(SignFileBase64Test, FileIsNotReadBesideAWriter) {
  TempFile file({1});
  const HANDLE writer = CreateFileW(file.path().c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
  EXPECT_HR(kFailed, sign(file.path()));
  EXPECT_EQ(L"Не удалось прочитать файл " + file.path() + L". Ошибка 32.", TextOf(text));
  CloseHandle(writer);
}

TEST_F(SignFileBase64Test, ExplanationHasAtMost300Characters) {
  const std::wstring path = L"C:\\" + std::wstring(400, L'x');
  EXPECT_HR(kFailed, sign(path));
  EXPECT_EQ((L"Не удалось прочитать файл " + path).substr(0, 300), TextOf(text));
}

TEST_F(SignFileBase64Test, NullPathIsAFailure) {
  EXPECT_HR(kFailed, quivo()->SignFile2B64Mem(param(), nullptr, signature.out(), text.out()));
  EXPECT_EQ(VT_BSTR, text.type());
  EXPECT_EQ(0u, engine().count("QUIVO_SignMem"));
}

TEST_F(SignFileBase64Test, BufferOfTheFileThatCannotBeAllocatedIsErrorEight) {
  TempFile file({1, 2, 3});
  const Bstr path(file.path());
  Module::get().failAllocation(0);
  EXPECT_HR(kFailed, quivo()->SignFile2B64Mem(param(), path, signature.out(), text.out()));
  EXPECT_EQ(L"Не удалось прочитать файл " + file.path() + L". Ошибка 8.", TextOf(text));
  EXPECT_TRUE(file.closed());
}

TEST_F(SignFileBase64Test, EngineFailureIsExplainedByTheEngine) {
  TempFile file({1});
  engine().on("QUIVO_SignMem") = {};
  engine().on("QUIVO_SignMem").result = 0x1234;
  engine().on("QUIVO_GetErrorText").text = "engine text";
  EXPECT_HR(kFailed, sign(file.path()));
  EXPECT_EQ(L"engine text", TextOf(text));
  EXPECT_EQ(0x1234, engine().only("QUIVO_GetErrorText").number(0));
  EXPECT_EQ(VT_EMPTY, signature.type());
}

TEST_F(SignFileBase64Test, ResultOneOfTheEngineIsAFailureToo) {
  TempFile file({1});
  engine().on("QUIVO_SignMem") = {};
  engine().on("QUIVO_SignMem").result = 1;
  EXPECT_HR(kFailed, sign(file.path()));
}

TEST_F(SignFileBase64Test, FailedCallGivesItsBufferBack) {
  TempFile file({1});
  engine().on("QUIVO_SignMem").result = 5;
  EXPECT_HR(kFailed, sign(file.path()));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeMem"));
}

TEST_F(SignFileBase64Test, FailedEncodingIsExplainedByTheEngine) {
  TempFile file({1});
  engine().on("QUIVO_EncodeMem").result = static_cast<int32_t>(0xE0700042);
  engine().on("QUIVO_GetErrorText").text = "cannot encode";
  EXPECT_HR(kFailed, sign(file.path()));
  EXPECT_EQ(L"cannot encode", TextOf(text));
  EXPECT_EQ(static_cast<int32_t>(0xE0700042), engine().only("QUIVO_GetErrorText").number(0));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeMem"));
  EXPECT_EQ(VT_EMPTY, signature.type());
}

TEST_F(SignFileBase64Test, PositiveResultOfTheEncodingIsASuccess) {
  TempFile file({1});
  engine().on("QUIVO_EncodeMem").result = 4;
  EXPECT_OK(sign(file.path()));
  EXPECT_EQ(L"AQID", TextOf(signature));
}

TEST_F(SignFileBase64Test, TextBufferThatCannotBeAllocatedIsExplained) {
  TempFile file({1});
  engine().on("QUIVO_SignMem").during = [] { Module::get().failAllocation(0); };
  EXPECT_HR(kFailed, sign(file.path()));
  EXPECT_EQ(L"Недостаточно памяти", TextOf(text));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeMem"));
}

TEST_F(SignFileBase64Test, SignatureTextThatCannotBeMadeIsExplained) {
  TempFile file({1});
  const Bstr path(file.path());
  engine().on("QUIVO_EncodeMem").during = [] { MallocSpy::get().failAllocation(0); };
  EXPECT_HR(kFailed, quivo()->SignFile2B64Mem(param(), path, signature.out(), text.out()));
  EXPECT_EQ(L"Недостаточно памяти", TextOf(text));
  EXPECT_EQ(VT_EMPTY, signature.type());
}

TEST_F(SignFileBase64Test, SignatureIsOverwrittenWithoutBeingCleared) {
  TempFile file({1});
  Bstr kept(L"kept");
  VARIANT variable;
  V_VT(&variable) = VT_BSTR;
  V_BSTR(&variable) = kept;
  EXPECT_OK(quivo()->SignFile2B64Mem(param(), Bstr(file.path()), &variable, text.out()));
  EXPECT_EQ(L"kept", kept.text());
  VariantClear(&variable);
}

TEST_F(SignFileBase64Test, ErrorTextIsOptional) {
  EXPECT_HR(kFailed, quivo()->SignFile2B64Mem(param(), Bstr(missing), signature.out(), nullptr));
  TempFile file({1});
  engine().on("QUIVO_SignMem").result = 5;
  EXPECT_HR(kFailed, quivo()->SignFile2B64Mem(param(), Bstr(file.path()), signature.out(), nullptr));
  engine().on("QUIVO_SignMem").result = 0;
  EXPECT_OK(quivo()->SignFile2B64Mem(param(), Bstr(file.path()), signature.out(), nullptr));
}

TEST_F(SignFileBase64Test, UntrustedDataModeIsNotConsulted) {
  TempFile file({1});
  Ptr<IQUIVO> untrusted = untrustedQuivo();
  EXPECT_OK(untrusted->SignFile2B64Mem(param(), Bstr(file.path()), signature.out(), text.out()));
}

TEST_F(SignFileBase64Test, LongSignatureHasRoomForItsText) {
  TempFile file({1});
  engine().on("QUIVO_SignMem").output = Bytes(3000, 7);
  engine().on("QUIVO_EncodeMem").text = std::string(4000, 'A');
  EXPECT_OK(sign(file.path()));
  EXPECT_EQ(std::wstring(4000, L'A'), TextOf(signature));
}

TEST_F(SignFileBase64Test, LargeFileIsReadWhole) {
  const Bytes content(3 << 20, 0x41);
  TempFile file(content);
  EXPECT_OK(sign(file.path()));
  EXPECT_EQ(content, engine().only("QUIVO_SignMem").blobBytes(2));
}

}  // namespace
