// What the next session sees of the changes that another process has just made to the folder of a store.
#include <windows.h>

#include <algorithm>

#include "element.h"
#include "folder_fixture.h"

using namespace standin;

namespace {

/// Another process, which changes files.
class Stranger {
 public:
  Stranger() {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE input = nullptr, output = nullptr;
    CreatePipe(&input, &orders_, &inherited, 0);
    CreatePipe(&answers_, &output, &inherited, 0);
    SetHandleInformation(orders_, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(answers_, HANDLE_FLAG_INHERIT, 0);
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string line = std::string(path, std::string(path).rfind('\\')) + "\\standin_stranger.exe";
    STARTUPINFOA start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input;
    start.hStdOutput = output;
    PROCESS_INFORMATION info{};
    EXPECT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &info));
    process_ = info.hProcess;
    for (const HANDLE handle : {info.hThread, input, output}) CloseHandle(handle);
  }
  ~Stranger() {
    CloseHandle(orders_);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process_, 10'000));
    for (const HANDLE handle : {process_, answers_}) CloseHandle(handle);
  }

  /// Waits until the order is carried out.
  void doThis(const std::string& order) {
    const std::string line = order + "\n";
    DWORD length = 0;
    WriteFile(orders_, line.data(), static_cast<DWORD>(line.size()), &length, nullptr);
    std::string answer;
    for (char next = 0; ReadFile(answers_, &next, 1, &length, nullptr) && length == 1 && next != '\n';) answer += next;
    EXPECT_EQ("done\r", answer) << order;
  }

 private:
  HANDLE orders_ = nullptr, answers_ = nullptr, process_ = nullptr;
};

class StrangersChanges : public FolderTest {
 protected:
  static constexpr int kRounds = 200;

  /// Whether a new session knows the person.
  bool isKnown(const std::string& folder, const std::string& person) {
    const EngineSession session = openIn("", folder);
    const bool isFound = knows(session, person);
    close(session);
    return isFound;
  }
  /// The type of the messages that a new session encrypts.
  Bytes kindOfMessage(const std::string& folder) {
    return ParseElement(encrypt(openIn("alice", folder), BytesOf("text"), {"bob"})).at({0}).encode();
  }
  /// That Heidi is known as soon as another process has carried out `arrival`, and is not after `departure`.
  void expectSeenAtOnce(const std::string& folder, const std::string& arrival, const std::string& departure) {
    for (int i = 0; i < kRounds && !HasFailure(); ++i) {
      stranger.doThis(arrival);
      EXPECT_TRUE(isKnown(folder, "heidi")) << i;
      stranger.doThis(departure);
      EXPECT_FALSE(isKnown(folder, "heidi")) << i;
    }
  }
  /// The certificates of Heidi and Ivan, in files of one size.
  static void writeTwins(const std::string& first, const std::string& second) {
    Bytes heidi = Material("heidi.pem"), ivan = Material("ivan.pem");
    heidi.resize(std::max(heidi.size(), ivan.size()), '\n');
    ivan.resize(heidi.size(), '\n');
    WriteBytes(first, heidi);
    WriteBytes(second, ivan);
  }

  Stranger stranger;
};

}  // namespace

TEST_F(StrangersChanges, AddedAndRemovedFilesAreSeenAtOnce) {
  const std::string folder = oldCopy("added"), file = folder + "\\new.cer";
  expectSeenAtOnce(folder, "copy|" + MaterialPath("heidi.cer") + "|" + file, "remove|" + file);
}

TEST_F(StrangersChanges, FilesMovedInAndOutAreSeenAtOnce) {
  const std::string folder = oldCopy("moved"), inside = folder + "\\new.cer", outside = ScratchPath("outside.cer");
  WriteBytes(outside, Material("heidi.cer"));
  expectSeenAtOnce(folder, "move|" + outside + "|" + inside, "move|" + inside + "|" + outside);
}

TEST_F(StrangersChanges, FileRewrittenInPlaceWithTheSameSizeIsSeenAtOnce) {
  const std::string folder = oldCopy("rewritten"), file = folder + "\\changing.cer";
  const std::string heidi = ScratchPath("heidi.same"), ivan = ScratchPath("ivan.same");
  writeTwins(heidi, ivan);
  stranger.doThis("copy|" + ivan + "|" + file);
  expectSeenAtOnce(folder, "rewrite|" + heidi + "|" + file, "rewrite|" + ivan + "|" + file);
}

TEST_F(StrangersChanges, FileThatItsWriterStillHasOpenIsSeen) {
  const std::string folder = oldCopy("open"), file = folder + "\\changing.cer";
  WriteBytes(file, Material("heidi.cer"));
  const HANDLE writer = CreateFileA(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, writer);
  EXPECT_TRUE(isKnown(folder, "heidi"));
  CloseHandle(writer);
}

TEST_F(StrangersChanges, LastOfManyChangesIsSeen) {
  const std::string folder = oldCopy("many"), file = folder + "\\new.cer";
  ASSERT_FALSE(isKnown(folder, "heidi"));
  for (const char* const count : {"10", "100", "3000"}) {
    stranger.doThis("fill|" + folder + "|" + count);
    stranger.doThis("copy|" + MaterialPath("heidi.cer") + "|" + file);
    EXPECT_TRUE(isKnown(folder, "heidi")) << count;
    stranger.doThis("remove|" + file);
    EXPECT_FALSE(isKnown(folder, "heidi")) << count;
  }
}

TEST_F(StrangersChanges, ChangeAfterManyInAnotherWatchedFolderIsSeenAtOnce) {
  const std::string folder = oldCopy("quiet"), busy = oldCopy("busy"), file = folder + "\\changing.cer";
  const std::string heidi = ScratchPath("heidi.same"), ivan = ScratchPath("ivan.same");
  writeTwins(heidi, ivan);
  stranger.doThis("copy|" + ivan + "|" + file);
  stranger.doThis("fill|" + busy + "|1000");
  for (int i = 0; i < 10 && !HasFailure(); ++i) {
    EXPECT_FALSE(isKnown(busy, "heidi")) << i;
    EXPECT_FALSE(isKnown(folder, "heidi")) << i;
    stranger.doThis("hurry|" + busy + "|" + heidi + "|" + file);
    EXPECT_TRUE(isKnown(folder, "heidi")) << i;
    stranger.doThis("hurry|" + busy + "|" + ivan + "|" + file);
  }
}

TEST_F(StrangersChanges, FolderThatTookThePlaceOfAnotherIsSeen) {
  const std::string folder = oldCopy("place"), other = oldCopy("other"), away = ScratchPath("away");
  WriteBytes(other + "\\new.cer", Material("heidi.cer"));
  ASSERT_FALSE(isKnown(folder, "heidi"));
  stranger.doThis("move|" + folder + "|" + away);
  EngineSession session = nullptr;
  EXPECT_CODE(kStoreUnreadable, tryOpen("", "", folder, session));
  stranger.doThis("move|" + other + "|" + folder);
  EXPECT_TRUE(isKnown(folder, "heidi"));
  stranger.doThis("copy|" + MaterialPath("ivan.cer") + "|" + away + "\\ivan.cer");
  EXPECT_FALSE(isKnown(folder, "ivan"));
}

TEST_F(StrangersChanges, FolderDeletedAndMadeAgainIsSeen) {
  const std::string folder = ScratchPath("again");
  for (int i = 0; i < 3; ++i) {
    CreateDirectoryA(folder.c_str(), nullptr);
    stranger.doThis("copy|" + MaterialPath("heidi.cer") + "|" + folder + "\\new.cer");
    EXPECT_TRUE(isKnown(folder, "heidi"));
    stranger.doThis("remove|" + folder + "\\new.cer");
    EXPECT_TRUE(RemoveDirectoryA(folder.c_str()));
    EngineSession session = nullptr;
    EXPECT_CODE(kStoreUnreadable, tryOpen("", "", folder, session));
    EXPECT_FALSE(FileExists(folder));
  }
}

TEST_F(StrangersChanges, ThreadThatOpenedTheFirstSessionMayHaveEnded) {
  static std::string folder;
  folder = oldCopy("thread");
  const auto work = [](void*) -> DWORD {
    const LocalParamRecord local{sizeof local, 0, nullptr, folder.data(), nullptr, nullptr};
    EngineSession session = nullptr;
    for (int i = 0; i < 2; ++i) {
      if (QUIVO_InitializeEx(kEngineLocalParam, &local, &session) != 0) return 1;
      QUIVO_Uninitialize(session);
    }
    return 0;
  };
  const HANDLE thread = CreateThread(nullptr, 0, work, nullptr, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  stranger.doThis("copy|" + MaterialPath("heidi.cer") + "|" + folder + "\\new.cer");
  EXPECT_TRUE(isKnown(folder, "heidi"));
}

TEST_F(StrangersChanges, PolicyThatAppearsIsSeen) {
  const std::string folder = oldCopy("policy"), policy = ScratchPath("policy.txt");
  const Bytes before = kindOfMessage(folder);
  WriteBytes(policy, BytesOf("encrypt authenticated\n"));
  stranger.doThis("copy|" + policy + "|" + folder + "\\policy.txt");
  EXPECT_NE(before, kindOfMessage(folder));
}

TEST_F(StrangersChanges, PolicyThatItsWriterStillHasOpenHolds) {
  const std::string folder = oldCopy("open-policy"), policy = folder + "\\policy.txt";
  const Bytes before = kindOfMessage(folder);
  WriteBytes(policy, BytesOf("encrypt authenticated\n"));
  const HANDLE writer = CreateFileA(policy.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, writer);
  EXPECT_NE(before, kindOfMessage(folder));
  CloseHandle(writer);
}

TEST_F(StrangersChanges, FoldersThatComeAndGoLeaveNoHandles) {
  const auto handlesAfter = [&](const char* name) {
    for (int i = 0; i < 10; ++i) {
      const std::string folder = ScratchPath(name + std::to_string(i));
      CreateDirectoryA(folder.c_str(), nullptr);
      WriteBytes(folder + "\\heidi.cer", Material("heidi.cer"));
      EXPECT_TRUE(isKnown(folder, "heidi"));
    }
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
  };
  const DWORD before = handlesAfter("some");
  EXPECT_LE(handlesAfter("others"), before);
}
