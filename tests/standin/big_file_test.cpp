// Files larger than the memory that is allowed for them.
#include <windows.h>

#include <psapi.h>

#include "engine_test.h"

using namespace standin;

namespace {

constexpr LONGLONG kFileSize = 192LL * 1024 * 1024;
constexpr size_t kMostGrowth = 64 * 1024 * 1024;

size_t PeakMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PeakWorkingSetSize;
}

LONGLONG SizeOf(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  EXPECT_TRUE(GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data));
  return static_cast<LONGLONG>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

void MakeFile(const std::string& path) {
  const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, file);
  LARGE_INTEGER size;
  size.QuadPart = kFileSize;
  SetFilePointerEx(file, size, nullptr, FILE_BEGIN);
  EXPECT_TRUE(SetEndOfFile(file));
  CloseHandle(file);
}

class BigFiles : public EngineTest {
 protected:
  void SetUp() override {
    session = open("alice");
    MakeFile(data);
    // What the first signature needs once is not what this test is about.
    sign(session, 0, BytesOf("x"));
    peakAtStart = PeakMemory();
  }
  void TearDown() override {
    EXPECT_GT(peakAtStart + kMostGrowth, PeakMemory());
    for (const std::string& path : {data, first, second}) DeleteFileA(path.c_str());
  }

  EngineSession session = nullptr;
  size_t peakAtStart = 0;
  const std::string data = ScratchPath("big");
  const std::string first = ScratchPath("big.1");
  const std::string second = ScratchPath("big.2");
};

}  // namespace

TEST_F(BigFiles, AreSignedAndVerified) {
  const SignParamRecord param{kSendCertificate, nullptr};
  ASSERT_CODE(0, QUIVO_SignFile(session, &param, data.c_str(), nullptr, first.c_str()));
  const VerifyParamRecord verifyParam{};
  VerifyResultRecord result{};
  EXPECT_CODE(0, QUIVO_VerifyFile(session, &verifyParam, nullptr, first.c_str(), second.c_str(), &result));
  EXPECT_EQ(1, result.count);
  QUIVO_FreeVerifyResult(session, &result);
  EXPECT_EQ(kFileSize, SizeOf(second));
  EXPECT_CODE(0, QUIVO_StrSignFile(open("bob"), &param, nullptr, first.c_str(), second.c_str()));
  SignedInfoResultRecord info{};
  EXPECT_CODE(0, QUIVO_SignedInfoFile(session, second.c_str(), &info));
  EXPECT_EQ(2u, info.signatureCount);
}

TEST_F(BigFiles, AreSignedApart) {
  const SignParamRecord param{kSendCertificate | kDetached, nullptr};
  ASSERT_CODE(0, QUIVO_StrSignFile(session, &param, data.c_str(), nullptr, first.c_str()));
  EXPECT_CODE(0, verifyFile(session, first, "", {}, data.c_str()).code);
}

TEST_F(BigFiles, AreEncryptedAndDecrypted) {
  Receivers receivers({"alice", "bob"});
  const EncryptParamRecord param = receivers.param();
  ASSERT_CODE(0, QUIVO_EncryptFile(session, &param, data.c_str(), first.c_str()));
  const DecryptParamRecord decryptParam{1, nullptr, 4};
  DecryptResultRecord result{};
  ASSERT_CODE(0, QUIVO_StrDecryptFile(session, &decryptParam, first.c_str(), second.c_str(), &result));
  QUIVO_FreeDecryptResult(session, &result);
  EXPECT_EQ(kFileSize, SizeOf(second));
}

TEST_F(BigFiles, AreHashed) {
  DataBlob_t hash{};
  ASSERT_CODE(0, QUIVO_HashFile(session, data.c_str(), &hash));
  EXPECT_EQ(32u, take(session, hash).size());
}
