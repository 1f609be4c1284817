// What SignFile2B64Mem is given: the arguments that it refuses, and how it opens the file.
#include "support/foreign_object.h"
#include "support/import_patch.h"
#include "support/records.h"
#include "support/temp_file.h"

namespace {

constexpr uint32_t kFailed = 0xFFFFFFFF;

struct OpenedFile {
  std::wstring path;
  DWORD access, share, disposition, flags;
  bool hasSecurity, hasTemplate;
};

class SignFileBase64InputTest : public ContractTest {
 protected:
  void SetUp() override {
    engine().on("QUIVO_SignMem").output = {1, 2, 3};
    engine().on("QUIVO_EncodeMem").text = "AQID";
    engine().on("QUIVO_GetErrorText").text = "why";
  }

  /// Nothing is read or signed, and the text is that of the code.
  void expectRefused(HRESULT result) {
    EXPECT_HR(kFailed, result);
    EXPECT_EQ(L"why", TextOf(text));
    ASSERT_EQ(std::vector<std::string>{"QUIVO_GetErrorText"}, engine().names());
    EXPECT_EQ(0x57, engine().last().number(0));
    EXPECT_EQ(0u, opened.size());
    EXPECT_EQ(VT_EMPTY, signature.type());
    text = Variant();
    engine().forgetCalls();
  }

  TempFile file{{10, 20}};
  Bstr path{file.path()}, missing{L"C:\\no such folder\\file"};
  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<ISignParam> param = Make<ISignParam>();
  Variant signature, text;
  std::vector<OpenedFile> opened;

 private:
  ImportHook<"CreateFileW", decltype(CreateFileW)> hook_{[this](LPCWSTR name, DWORD access, DWORD share,
                                                                LPSECURITY_ATTRIBUTES security, DWORD disposition,
                                                                DWORD flags, HANDLE templateFile) {
    opened.push_back({name == nullptr ? L"" : name, access, share, disposition, flags, security != nullptr,
                      templateFile != nullptr});
    return CreateFileW(name, access, share, security, disposition, flags, templateFile);
  }};
};

TEST_F(SignFileBase64InputTest, FileIsOpenedForSequentialReadingBesideOtherReaders) {
  EXPECT_OK(quivo->SignFile2B64Mem(param, path, signature.out(), text.out()));
  ASSERT_EQ(1u, opened.size());
  EXPECT_EQ(file.path(), opened[0].path);
  EXPECT_EQ(GENERIC_READ, opened[0].access);
  EXPECT_EQ(static_cast<DWORD>(FILE_SHARE_READ), opened[0].share);
  EXPECT_EQ(static_cast<DWORD>(OPEN_EXISTING), opened[0].disposition);
  EXPECT_EQ(static_cast<DWORD>(FILE_FLAG_SEQUENTIAL_SCAN), opened[0].flags);
  EXPECT_FALSE(opened[0].hasSecurity);
  EXPECT_FALSE(opened[0].hasTemplate);
}

TEST_F(SignFileBase64InputTest, PipeIsNoFileToSign) {
  const std::wstring name = L"\\\\.\\pipe\\tavlcom-" + std::to_wstring(GetCurrentProcessId());
  const HANDLE pipe = CreateNamedPipeW(name.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 16, 16, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, pipe);
  EXPECT_HR(kFailed, quivo->SignFile2B64Mem(param, Bstr(name), signature.out(), text.out()));
  EXPECT_EQ(L"Не удалось прочитать файл " + name + L". Ошибка 1.", TextOf(text));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
  EXPECT_EQ(VT_EMPTY, signature.type());
  EXPECT_TRUE(CloseHandle(pipe));
}

TEST_F(SignFileBase64InputTest, NoFileIsSignedWhoseSizeExceeds32Bits) {
  const HANDLE large = CreateFileW(file.path().c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  LARGE_INTEGER size{};
  size.QuadPart = (int64_t{1} << 32) + 2;
  ASSERT_TRUE(SetFilePointerEx(large, size, nullptr, FILE_BEGIN));
  ASSERT_TRUE(SetEndOfFile(large));
  ASSERT_TRUE(CloseHandle(large));
  EXPECT_HR(kFailed, quivo->SignFile2B64Mem(param, path, signature.out(), text.out()));
  EXPECT_EQ(L"Не удалось прочитать файл " + file.path() + L". Ошибка 223.", TextOf(text));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(SignFileBase64InputTest, NullParametersAreRefusedAndExplained) {
  expectRefused(quivo->SignFile2B64Mem(nullptr, path, signature.out(), text.out()));
}

TEST_F(SignFileBase64InputTest, ForeignParametersAreRefusedAndExplained) {
  ForeignObject foreign;
  expectRefused(quivo->SignFile2B64Mem(foreign.as<ISignParam>(), path, signature.out(), text.out()));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
}

TEST_F(SignFileBase64InputTest, ParametersOfAnotherClassAreRefusedAndExplained) {
  Ptr<IExportParam> other = Make<IExportParam>();
  void* object = other.get();
  expectRefused(quivo->SignFile2B64Mem(static_cast<ISignParam*>(object), path, signature.out(), text.out()));
}

TEST_F(SignFileBase64InputTest, NullSignatureIsRefusedAndExplained) {
  expectRefused(quivo->SignFile2B64Mem(param, path, nullptr, text.out()));
}

TEST_F(SignFileBase64InputTest, ArgumentsAreRefusedBeforeTheFileIsMissed) {
  ForeignObject foreign;
  expectRefused(quivo->SignFile2B64Mem(nullptr, missing, signature.out(), text.out()));
  expectRefused(quivo->SignFile2B64Mem(foreign.as<ISignParam>(), missing, signature.out(), text.out()));
  expectRefused(quivo->SignFile2B64Mem(param, missing, nullptr, text.out()));
  expectRefused(quivo->SignFile2B64Mem(nullptr, nullptr, nullptr, text.out()));
}

TEST_F(SignFileBase64InputTest, RefusalNeedsNoErrorText) {
  EXPECT_HR(kFailed, quivo->SignFile2B64Mem(nullptr, path, signature.out(), nullptr));
  EXPECT_HR(kFailed, quivo->SignFile2B64Mem(param, path, nullptr, nullptr));
  EXPECT_EQ(0u, engine().count("QUIVO_SignMem"));
}

}  // namespace
