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
    session_ = open("alice");
    MakeFile(data_);
    // What the first signature needs once is not what this test is about.
    sign(session_, 0, BytesOf("x"));
    start_ = PeakMemory();
  }
  void TearDown() override {
    EXPECT_GT(start_ + kMostGrowth, PeakMemory());
    for (const std::string& path : {data_, first_, second_}) DeleteFileA(path.c_str());
  }

  EngineSession session_ = nullptr;
  size_t start_ = 0;
  const std::string data_ = ScratchPath("big");
  const std::string first_ = ScratchPath("big.1");
  const std::string second_ = ScratchPath("big.2");
};

}  // namespace

TEST_F(BigFiles, AreSignedAndVerified) {
  const SignParamRecord param{kSendCertificate, nullptr};
  ASSERT_CODE(0, QUIVO_SignFile(session_, &param, data_.c_str(), nullptr, first_.c_str()));
  const VerifyParamRecord verify_param{};
  VerifyResultRecord result{};
  EXPECT_CODE(0, QUIVO_VerifyFile(session_, &verify_param, nullptr, first_.c_str(), second_.c_str(), &result));
  EXPECT_EQ(1, result.count);
  QUIVO_FreeVerifyResult(session_, &result);
  EXPECT_EQ(kFileSize, SizeOf(second_));
  EXPECT_CODE(0, QUIVO_StrSignFile(open("bob"), &param, nullptr, first_.c_str(), second_.c_str()));
  SignedInfoResultRecord info{};
  EXPECT_CODE(0, QUIVO_SignedInfoFile(session_, second_.c_str(), &info));
  EXPECT_EQ(2u, info.signatureCount);
}

TEST_F(BigFiles, AreSignedApart) {
  const SignParamRecord param{kSendCertificate | kDetached, nullptr};
  ASSERT_CODE(0, QUIVO_StrSignFile(session_, &param, data_.c_str(), nullptr, first_.c_str()));
  EXPECT_CODE(0, verifyFile(session_, first_, "", {}, data_.c_str()).code);
}

TEST_F(BigFiles, AreEncryptedAndDecrypted) {
  Receivers receivers({"alice", "bob"});
  const EncryptParamRecord param = receivers.param();
  ASSERT_CODE(0, QUIVO_EncryptFile(session_, &param, data_.c_str(), first_.c_str()));
  const DecryptParamRecord decrypt_param{1, nullptr, 4};
  DecryptResultRecord result{};
  ASSERT_CODE(0, QUIVO_StrDecryptFile(session_, &decrypt_param, first_.c_str(), second_.c_str(), &result));
  QUIVO_FreeDecryptResult(session_, &result);
  EXPECT_EQ(kFileSize, SizeOf(second_));
}

TEST_F(BigFiles, AreHashed) {
  DataBlob_t hash{};
  ASSERT_CODE(0, QUIVO_HashFile(session_, data_.c_str(), &hash));
  EXPECT_EQ(32u, take(session_, hash).size());
}
