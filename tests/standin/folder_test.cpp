// The folder of a store as sessions of one process see it: what is kept of its files, what other processes change, and
// what a large one costs.
#include <windows.h>

#include <algorithm>
#include <atomic>

#include "folder_fixture.h"

using namespace standin;

namespace {

using KeptFiles = FolderTest;

std::string Base64(const Bytes& bytes) {
  std::string text(bytes.size() * 2 + 8, '\0');
  text.resize(static_cast<size_t>(QUIVO_EncodeMem(text.data(), bytes.data(), static_cast<uint32_t>(bytes.size()))));
  return text;
}

/// A PEM text of self-signed certificates, each in a name of its own.
Bytes ManyRoots(int count) {
  const Bytes root = Material("root.cer");
  const std::string name = "root";
  std::string text;
  for (int number = 0; number < count; ++number) {
    Bytes changed = root;
    for (auto at = changed.begin(); (at = std::search(at, changed.end(), name.begin(), name.end())) != changed.end();) {
      for (int place = 0, rest = number; place < 4; ++place, rest /= 26) *at++ = static_cast<uint8_t>('a' + rest % 26);
    }
    text += "-----BEGIN CERTIFICATE-----\n";
    const std::string base64 = Base64(changed);
    for (size_t i = 0; i < base64.size(); i += 64) text += base64.substr(i, 64) + "\n";
    text += "-----END CERTIFICATE-----\n";
  }
  return BytesOf(text);
}

class LargeStore : public StoreTest {
 protected:
  static constexpr int kMany = 3000;
  std::string largeCopy(const std::string& name) {
    const std::string folder = CopyOfStore("store", name);
    WriteBytes(folder + "\\many.pem", ManyRoots(kMany));
    return folder;
  }
  template <typename Work>
  static uint64_t workOf(Work work) {
    const uint64_t before = WorkDone();
    work();
    return WorkDone() - before;
  }
};

}  // namespace

TEST_F(KeptFiles, UnchangedFileIsNotReadByTheNextSession) {
  const std::string folder = oldCopy("unchanged");
  ASSERT_TRUE(knows(openIn("", folder), "bob"));
  const HANDLE alone = CreateFileA((folder + "\\bob.cer").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, alone);
  EXPECT_TRUE(knows(openIn("", folder), "bob"));
  CloseHandle(alone);
}

TEST_F(KeptFiles, FileThatCouldNotBeReadIsReadByTheNextSession) {
  const std::string folder = oldCopy("unreadable");
  const HANDLE alone = CreateFileA((folder + "\\bob.cer").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, alone);
  EXPECT_FALSE(knows(openIn("", folder), "bob"));
  CloseHandle(alone);
  EXPECT_TRUE(knows(openIn("", folder), "bob"));
}

TEST_F(KeptFiles, AddedReplacedAndRemovedFilesAreSeenByTheNextSession) {
  const std::string folder = oldCopy("changed");
  const size_t before = found(folder);
  WriteBytes(folder + "\\heidi.cer", Material("heidi.cer"));
  EXPECT_EQ(before + 1, found(folder));
  WriteBytes(folder + "\\bob.cer", Material("ivan.cer"));
  const EngineSession session = openIn("", folder);
  EXPECT_TRUE(knows(session, "ivan"));
  EXPECT_FALSE(knows(session, "bob"));
  DeleteFileA((folder + "\\heidi.cer").c_str());
  EXPECT_EQ(before, found(folder));
}

TEST_F(KeptFiles, FileReplacedWithinTheGrainOfItsTimeIsSeenByTheNextSession) {
  const std::string folder = oldCopy("grain");
  const std::string file = folder + "\\changing.cer";
  Bytes heidi = Material("heidi.pem"), ivan = Material("ivan.pem");
  heidi.resize(std::max(heidi.size(), ivan.size()), '\n');
  ivan.resize(heidi.size(), '\n');
  WriteBytes(file, heidi);
  age(file, -2);
  const FILETIME time = timeOf(file);
  ASSERT_TRUE(knows(openIn("", folder), "heidi"));
  WriteBytes(file, ivan);
  setTime(file, time);
  EXPECT_TRUE(knows(openIn("", folder), "ivan"));
}

TEST_F(KeptFiles, OpenSessionKeepsWhatItHas) {
  const std::string folder = oldCopy("kept");
  const EngineSession first = openIn("", folder), second = openIn("", folder);
  EXPECT_CODE(0, add(first, Material("heidi.cer")));
  EXPECT_TRUE(knows(first, "heidi"));
  EXPECT_FALSE(knows(second, "heidi"));
  EXPECT_TRUE(knows(openIn("", folder), "heidi"));
}

TEST_F(KeptFiles, ListsAreReadAgainOnDemand) {
  const std::string folder = oldCopy("lists");
  DeleteFileA((folder + "\\root.crl").c_str());
  const EngineSession session = openIn("alice", folder);
  const Bytes message = sign(open("carol"), kSendCertificate, BytesOf("text"));
  EXPECT_CODE(0, verify(session, message).code);
  WriteBytes(folder + "\\another.crl", Material("root.crl"));
  EXPECT_CODE(0, verify(session, message).code);
  char text[256];
  DataBlob_t report{sizeof text, reinterpret_cast<uint8_t*>(text)};
  EXPECT_CODE(0, QUIVO_Ctrl(session, kEngineCtrlUpdateCrl, &report));
  EXPECT_CODE(kRevoked, verify(session, message).code);
}

TEST_F(KeptFiles, TwoThreadsShareThem) {
  struct Job {
    std::string keys = MaterialPath("alice.p12"), folder = oldCopy("threads");
    Bytes message;
    std::atomic<int> good = 0;
  } job;
  job.message = sign(open("bob"), 0, BytesOf("text"));
  constexpr int kRounds = 20;
  const auto work = [](void* argument) -> DWORD {
    Job& shared = *static_cast<Job*>(argument);
    char pin[] = "12345678";
    for (int i = 0; i < kRounds; ++i) {
      const LocalParamRecord local{sizeof local, 0, shared.keys.data(), shared.folder.data(), nullptr, pin};
      EngineSession session = nullptr;
      if (QUIVO_InitializeEx(kEngineLocalParam, &local, &session) != 0) continue;
      const DataBlob_t none{}, message = BlobOf(shared.message);
      const VerifyParamRecord param{};
      DataBlob_t content{};
      VerifyResultRecord result{};
      const bool isGood = QUIVO_VerifyMem(session, &param, &none, &message, &content, &result) == 0;
      if (QUIVO_Uninitialize(session) == 0 && isGood) ++shared.good;
    }
    return 0;
  };
  HANDLE threads[2];
  for (HANDLE& thread : threads) thread = CreateThread(nullptr, 0, work, &job, 0, nullptr);
  WaitForMultipleObjects(2, threads, TRUE, INFINITE);
  for (const HANDLE thread : threads) CloseHandle(thread);
  EXPECT_EQ(2 * kRounds, job.good);
}

TEST_F(LargeStore, SessionDecodesNothingThatItDoesNotNeed) {
  const std::string folder = largeCopy("large-open");
  EngineSession session = nullptr;
  const uint64_t opening = workOf([&] { session = openIn("", folder); });
  const uint64_t decoding = workOf([&] { EXPECT_LT(size_t{kMany}, find(session, WithFlags(2)).size()); });
  // The clock has steps of some milliseconds.
  EXPECT_LT(opening + opening / 4, decoding);
}

TEST_F(LargeStore, VerificationTakesNoLongerThanInASmallOne) {
  const Bytes message = sign(open("bob"), 0, BytesOf("text"));
  const auto verifyMany = [&](EngineSession session) {
    return workOf([&] {
      for (int i = 0; i < 50; ++i) EXPECT_CODE(0, verify(session, message).code);
    });
  };
  const uint64_t small = verifyMany(open("alice"));
  EXPECT_LT(verifyMany(openIn("alice", largeCopy("large-verify"))), 3 * small + 50);
}

TEST_F(LargeStore, IssuerIsFoundWhateverTheFormOfItsName) {
  const Bytes message = sign(open("bob"), kSendCertificate, BytesOf("text"));
  const Bytes issuer = Material("middle.cer");
  const std::string name = "middle";
  const auto at = [&](Bytes& bytes) { return std::find_end(bytes.begin(), bytes.end(), name.begin(), name.end()); };
  for (const bool isFound : {true, false}) {
    // The change spoils the signature of the issuer's certificate: who finds it sees a broken chain.
    Bytes changed = issuer;
    *at(changed) = isFound ? 'M' : 'N';
    const std::string folder = CopyOfStore("roots", isFound ? "same-name" : "other-name");
    DeleteFileA((folder + "\\middle.cer").c_str());
    DeleteFileA((folder + "\\middle.pem").c_str());
    WriteBytes(folder + "\\changed.cer", changed);
    EXPECT_CODE(isFound ? kChainBroken : kIssuerUnknown, verify(openIn("alice", folder), message).code);
  }
}
