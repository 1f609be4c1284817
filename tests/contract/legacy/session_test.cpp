// The legacy object's session: profile, periods in the registry, flags, its failure, its end.
#include "contract/legacy/legacy_test.h"

namespace {

class LegacySession : public LegacyTest {
 protected:
  void setPeriods(DWORD lastCrl, DWORD crlPeriod, DWORD lastKey, DWORD keyPeriod) {
    WriteDword(HKEY_LOCAL_MACHINE, kLegacyKey, L"LastCrlUpdateTime", lastCrl);
    WriteDword(HKEY_LOCAL_MACHINE, kLegacyKey, L"CrlUpdatePeriod", crlPeriod);
    WriteDword(HKEY_LOCAL_MACHINE, kLegacyKey, L"LastKeyCheckTime", lastKey);
    WriteDword(HKEY_LOCAL_MACHINE, kLegacyKey, L"KeyCheckPeriod", keyPeriod);
  }
  /// The flags that a session is opened with.
  uint32_t flagsOfInit() {
    EXPECT_OK(object->Init(Bstr(L"My")));
    const uint32_t flags = static_cast<uint32_t>(engine().only("QUIVO_Initialize").value(1));
    object->Uninit();
    engine().forgetCalls();
    return flags;
  }
  std::string profileOfInit(const Bstr& profile) {
    EXPECT_OK(object->Init(profile));
    return engine().only("QUIVO_Initialize").text(0).value();
  }
  uint32_t now() { return static_cast<uint32_t>(desktop.now); }
};

TEST_F(LegacySession, InitPassesTheProfileInTheAnsiCodePage) {
  EXPECT_EQ(AnsiOf(L"Анна Петрова"), profileOfInit(L"Анна Петрова"));
}

TEST_F(LegacySession, InitCutsTheProfileAt260Characters) {
  const std::wstring name = std::wstring(259, L'ж') + L"яц" + std::wstring(39, L'!');
  ASSERT_EQ(300u, name.size());
  EXPECT_EQ(AnsiOf(name.substr(0, 260)), profileOfInit(name));
}

TEST_F(LegacySession, AProfileOf260CharactersIsPassedWhole) {
  const std::wstring name(260, L'ж');
  EXPECT_EQ(AnsiOf(name), profileOfInit(name));
}

/// Lets the thread speak the language of `locale` while it lives.
class ThreadLocale {
 public:
  explicit ThreadLocale(LCID locale) : former_(GetThreadLocale()) { SetThreadLocale(locale); }
  ~ThreadLocale() { SetThreadLocale(former_); }

 private:
  LCID former_;
};

TEST_F(LegacySession, TextsAreInTheCodePageOfTheThread) {
  // The user's own language would have the code page of the process.
  const WORD western = PRIMARYLANGID(GetUserDefaultLangID()) == LANG_ENGLISH ? LANG_FRENCH : LANG_ENGLISH;
  const ThreadLocale locale(MAKELCID(MAKELANGID(western, SUBLANG_DEFAULT), SORT_DEFAULT));
  EXPECT_EQ("\xE9", profileOfInit(L"\x00E9"));
}

TEST_F(LegacySession, AnEmptyProfileIsAnEmptyName) { EXPECT_EQ("", profileOfInit(L"")); }
TEST_F(LegacySession, ANullProfileIsAnEmptyName) { EXPECT_EQ("", profileOfInit(Bstr())); }

TEST_F(LegacySession, WithoutTheKeyBothChecksAreDue) { EXPECT_EQ(6u, flagsOfInit()); }

TEST_F(LegacySession, WithAnEmptyKeyBothChecksAreDue) {
  WriteKey(HKEY_LOCAL_MACHINE, kLegacyKey);
  EXPECT_EQ(6u, flagsOfInit());
}

TEST_F(LegacySession, ChecksThatAreNotDueAreLeftOut) {
  setPeriods(now() - 60, 10, now() - 60, 10);
  EXPECT_EQ(5u, flagsOfInit());
}

TEST_F(LegacySession, EachPeriodDecidesOneFlag) {
  setPeriods(now() - 60, 10, now() - 700, 10);
  EXPECT_EQ(7u, flagsOfInit());
  setPeriods(now() - 700, 10, now() - 60, 10);
  EXPECT_EQ(4u, flagsOfInit());
}

TEST_F(LegacySession, ADeadlineOfNowIsNotPast) {
  setPeriods(now() - 600, 10, now() - 600, 10);
  EXPECT_EQ(5u, flagsOfInit());
  setPeriods(now() - 601, 10, now() - 601, 10);
  EXPECT_EQ(6u, flagsOfInit());
}

TEST_F(LegacySession, DeadlinesWrapAt32Bits) {
  // 71582789 minutes are 44 seconds more than 2^32.
  setPeriods(now() - 100, 71582789, now() - 30, 71582789);
  EXPECT_EQ(4u, flagsOfInit());
  setPeriods(0xFFFFFFFF, 1, 0xFFFFFFFF, 1);
  EXPECT_EQ(6u, flagsOfInit());
  setPeriods(0xFFFFFFFF, 0, 0xFFFFFFFF, 0);
  EXPECT_EQ(5u, flagsOfInit());
}

TEST_F(LegacySession, TheClockCountsByItsLow32Bits) {
  desktop.now = 0x100000000 + 1000;
  setPeriods(400, 10, 399, 10);
  EXPECT_EQ(7u, flagsOfInit());
}

TEST_F(LegacySession, ComparisonsAreUnsigned) {
  desktop.now = 0xFFFFFFF0;
  setPeriods(1000, 10, 1000, 10);
  EXPECT_EQ(6u, flagsOfInit());
}

TEST_F(LegacySession, AValueOfAnotherTypeKeepsItsDefault) {
  setPeriods(now() - 2880 * 60 + 1, 1, now() - 2880 * 60 + 1, 1);
  EXPECT_EQ(6u, flagsOfInit());
  WriteText(HKEY_LOCAL_MACHINE, kLegacyKey, L"CrlUpdatePeriod", L"1");
  EXPECT_EQ(7u, flagsOfInit());
  WriteText(HKEY_LOCAL_MACHINE, kLegacyKey, L"KeyCheckPeriod", L"1");
  EXPECT_EQ(5u, flagsOfInit());
}

TEST_F(LegacySession, FewerThanFourBytesAreNoNumber) {
  const DWORD past = now() - 2880 * 60 - 1;
  setPeriods(past, 1, past, 1);
  HKEY key = nullptr;
  const BYTE longPeriod[] = {0xFF, 0xFF};
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, kLegacyKey, 0, KEY_WRITE, &key);
  RegSetValueExW(key, L"CrlUpdatePeriod", 0, REG_DWORD, longPeriod, sizeof longPeriod);
  RegSetValueExW(key, L"KeyCheckPeriod", 0, REG_DWORD, longPeriod, sizeof longPeriod);
  RegCloseKey(key);
  EXPECT_EQ(6u, flagsOfInit());
}

std::vector<std::string> queries;

LSTATUS WINAPI OpenKey(HKEY root, LPCSTR path, DWORD options, REGSAM access, PHKEY key) {
  char entry[16];
  wsprintfA(entry, "open 0x%X", access);
  queries.push_back(entry);
  return RegOpenKeyExA(root, path, options, access, key);
}

LSTATUS WINAPI QueryValue(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
  queries.push_back(name);
  return RegQueryValueExA(key, name, reserved, type, data, size);
}

TEST_F(LegacySession, PeriodsAreReadInTheirOrderThroughAReadOnlyKey) {
  WriteKey(HKEY_LOCAL_MACHINE, kLegacyKey);
  const ImportPatch opening(Module::get().handle(), "RegOpenKeyExA", reinterpret_cast<void*>(OpenKey));
  const ImportPatch querying(Module::get().handle(), "RegQueryValueExA", reinterpret_cast<void*>(QueryValue));
  queries.clear();
  flagsOfInit();
  EXPECT_EQ((std::vector<std::string>{"open 0x20019", "LastCrlUpdateTime", "CrlUpdatePeriod", "LastKeyCheckTime",
                                      "KeyCheckPeriod"}),
            queries);
}

TEST_F(LegacySession, FourBytesOfAnotherTypeAreNoNumber) {
  const DWORD past = now() - 2880 * 60 - 1;
  setPeriods(past, 1, past, 1);
  // Three characters and the terminator are as many bytes as a number, and would be a long period.
  WriteText(HKEY_LOCAL_MACHINE, kLegacyKey, L"CrlUpdatePeriod", L"zzz");
  WriteText(HKEY_LOCAL_MACHINE, kLegacyKey, L"KeyCheckPeriod", L"zzz");
  EXPECT_EQ(6u, flagsOfInit());
}

TEST_F(LegacySession, ALastTimeOfAnotherTypeIsZero) {
  setPeriods(now(), 10, now(), 10);
  EXPECT_EQ(5u, flagsOfInit());
  WriteText(HKEY_LOCAL_MACHINE, kLegacyKey, L"LastCrlUpdateTime", L"now");
  WriteText(HKEY_LOCAL_MACHINE, kLegacyKey, L"LastKeyCheckTime", L"now");
  EXPECT_EQ(6u, flagsOfInit());
}

TEST_F(LegacySession, TimesOfTheChecksAreWrittenThroughTheReadOnlyKey) {
  WriteDword(HKEY_LOCAL_MACHINE, kLegacyKey, L"LastCrlUpdateTime", 7);
  EXPECT_EQ(6u, flagsOfInit());
  ASSERT_EQ(2u, desktop.writes.size());
  for (const RegistryWrite& write : desktop.writes) {
    EXPECT_NE(nullptr, write.key);
    EXPECT_EQ(static_cast<DWORD>(REG_DWORD), write.type);
    EXPECT_EQ(4u, write.size);
    EXPECT_EQ(now(), write.value);
  }
  EXPECT_EQ(L"LastKeyCheckTime", desktop.writes[0].name);
  EXPECT_EQ(L"LastCrlUpdateTime", desktop.writes[1].name);
  DWORD value = 0, size = sizeof value;
  EXPECT_EQ(ERROR_SUCCESS, RegGetValueW(HKEY_LOCAL_MACHINE, kLegacyKey, L"LastCrlUpdateTime", RRF_RT_REG_DWORD, nullptr,
                                        &value, &size));
  EXPECT_EQ(7u, value);
}

TEST_F(LegacySession, WithoutTheKeyTheWritesAreAttemptedAllTheSame) {
  EXPECT_EQ(6u, flagsOfInit());
  ASSERT_EQ(2u, desktop.writes.size());
  EXPECT_EQ(nullptr, desktop.writes[0].key);
}

TEST_F(LegacySession, OnlyDueChecksAreWritten) {
  setPeriods(now(), 10, now(), 10);
  EXPECT_EQ(5u, flagsOfInit());
  EXPECT_EQ(0u, desktop.writes.size());
  setPeriods(now(), 10, 0, 10);
  EXPECT_EQ(7u, flagsOfInit());
  ASSERT_EQ(1u, desktop.writes.size());
  EXPECT_EQ(L"LastKeyCheckTime", desktop.writes[0].name);
  desktop.writes.clear();
  setPeriods(0, 10, now(), 10);
  EXPECT_EQ(4u, flagsOfInit());
  ASSERT_EQ(1u, desktop.writes.size());
  EXPECT_EQ(L"LastCrlUpdateTime", desktop.writes[0].name);
}

TEST_F(LegacySession, AFailureIsShownAndReturned) {
  engine().on("QUIVO_Initialize").result = 0x1234;
  engine().on("QUIVO_GetErrorText").text = AnsiOf(L"Профиль не найден.");
  EXPECT_HR(0x1234u, object->Init(Bstr(L"Нет")));
  const ShownMessage message = desktop.onlyMessage();
  EXPECT_EQ(L"Ошибка инициализации КОРВИС (x64).\nПрофиль не найден.", message.text);
  EXPECT_EQ(L"КОРВИС (x64)", message.caption);
  EXPECT_EQ(0x10010u, message.style);
  EXPECT_EQ(desktop.foreground, message.owner);
  EXPECT_EQ(0x1234, engine().only("QUIVO_GetErrorText").number(0));
  EXPECT_EQ(256, engine().only("QUIVO_GetErrorText").number(2));
  EXPECT_EQ(0u, desktop.writes.size());
}

TEST_F(LegacySession, TheCode0xFFFFFFFFHasNoText) {
  engine().on("QUIVO_Initialize").result = -1;
  EXPECT_HR(0xFFFFFFFFu, object->Init(Bstr(L"My")));
  EXPECT_EQ(L"Ошибка инициализации КОРВИС (x64).", desktop.onlyMessage().text);
  EXPECT_EQ(0u, engine().count("QUIVO_GetErrorText"));
}

TEST_F(LegacySession, AFailedInitCanBeRepeated) {
  engine().once("QUIVO_Initialize").result = 5;
  EXPECT_HR(5u, object->Init(Bstr(L"My")));
  EXPECT_OK(object->Init(Bstr(L"My")));
}

TEST_F(LegacySession, ASecondInitDoesNothing) {
  EXPECT_OK(object->Init(Bstr(L"My")));
  engine().forgetCalls();
  desktop.writes.clear();
  EXPECT_OK(object->Init(Bstr(L"Other")));
  EXPECT_EQ(0u, engine().calls().size());
  EXPECT_EQ(0u, desktop.writes.size());
}

TEST_F(LegacySession, ASecondInitReturnsTheStoredResult) {
  // An engine that fails and leaves a session all the same.
  engine().on("QUIVO_Initialize").result = 0x77;
  engine().on("QUIVO_Initialize").handle = reinterpret_cast<void*>(0x4711);
  EXPECT_HR(0x77u, object->Init(Bstr(L"My")));
  EXPECT_HR(0x77u, object->Init(Bstr(L"My")));
  EXPECT_EQ(1u, engine().count("QUIVO_Initialize"));
}

TEST_F(LegacySession, UninitClosesTheSessionAndReturnsTheEnginesResult) {
  openSession();
  engine().on("QUIVO_Uninitialize").result = 0x55;
  EXPECT_HR(0x55u, object->Uninit());
  EXPECT_EQ(1u, engine().count("QUIVO_Uninitialize"));
  EXPECT_HR(S_FALSE, object->Uninit());
  EXPECT_EQ(1u, engine().count("QUIVO_Uninitialize"));
}

TEST_F(LegacySession, UninitWithoutASessionIsFalse) {
  EXPECT_HR(S_FALSE, object->Uninit());
  EXPECT_EQ(0u, engine().calls().size());
}

TEST_F(LegacySession, ReleaseLeavesTheSessionOpen) {
  openSession();
  object.reset();
  EXPECT_EQ(0u, engine().count("QUIVO_Uninitialize"));
  EXPECT_EQ(1u, engine().openSessions());
  engine().reset();
}

TEST_F(LegacySession, TwoObjectsHaveTheirOwnSessions) {
  openSession();
  Ptr<Ipkiobj> other = Make<Ipkiobj>();
  EXPECT_OK(other->Init(Bstr(L"My")));
  EXPECT_EQ(2u, engine().openSessions());
  EXPECT_OK(other->Uninit());
  EXPECT_EQ(1u, engine().openSessions());
}

TEST_F(LegacySession, IsSignedDecidesByTheNumberOfSignatures) {
  openSession();
  engine().on("QUIVO_SignedInfoFile").signatureCount = 2;
  EXPECT_OK(object->IsSigned(Bstr(L"C:\\договор.p7s")));
  const fake::Call& call = engine().only("QUIVO_SignedInfoFile");
  EXPECT_EQ(AnsiOf(L"C:\\договор.p7s"), call.text(1));
  EXPECT_TRUE(call.record(2).allZero());
  EXPECT_EQ(16u, call.record(2).bytes.size());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeSignedInfoResult"));
}

TEST_F(LegacySession, IsSignedIsFalseWithoutSignaturesAndAfterAFailure) {
  openSession();
  EXPECT_HR(S_FALSE, object->IsSigned(Bstr(L"C:\\a")));
  engine().on("QUIVO_SignedInfoFile").signatureCount = 1;
  for (int32_t code : {2, -5, 1}) {
    engine().on("QUIVO_SignedInfoFile").result = code;
    EXPECT_HR(S_FALSE, object->IsSigned(Bstr(L"C:\\missing")));
  }
  EXPECT_EQ(4u, engine().count("QUIVO_FreeSignedInfoResult"));
  EXPECT_EQ(0u, desktop.messages.size());
}

}  // namespace
