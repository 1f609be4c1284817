// The name of the selected profile, read from a registry of this process alone.
#include "support/contract_test.h"
#include "support/import_patch.h"
#include "support/registry.h"

namespace {

constexpr const wchar_t* kProfiles = L"SOFTWARE\\KORVENTA\\tavl\\Profiles";

class ProfileNameTest : public ContractTest {
 protected:
  void profile(DWORD selected, const std::wstring& number, const wchar_t* name) {
    WriteDword(user_.key(), kProfiles, L"CurSel", selected);
    WriteText(user_.key(), std::wstring(kProfiles) + L"\\" + number, L"ProfileName", name);
  }
  HKEY user() { return user_.key(); }
  /// Asks with the thread's last error as given.
  HRESULT ask(Variant& name, DWORD lastError = 0) {
    Ptr<IQUIVO> quivo = Make<IQUIVO>();
    SetLastError(lastError);
    return quivo->GetCurrentProfileNameVBS(name.out());
  }

 private:
  PrivateRoot user_{HKEY_CURRENT_USER};
};

TEST_F(ProfileNameTest, NameOfTheSelectedProfileIsRead) {
  profile(3, L"3", L"Рабочий");
  WriteText(user(), std::wstring(kProfiles) + L"\\0", L"ProfileName", L"another");
  Variant name;
  EXPECT_OK(ask(name));
  EXPECT_EQ(L"Рабочий", TextOf(name));
}

TEST_F(ProfileNameTest, NumberIsFormattedAsASignedDecimal) {
  profile(0xFFFFFFFF, L"-1", L"minus");
  Variant name;
  EXPECT_OK(ask(name));
  EXPECT_EQ(L"minus", TextOf(name));
}

TEST_F(ProfileNameTest, KeysAreOpenedForReadingAndReservedArgumentsAreNull) {
  profile(0, L"0", L"name");
  int opened = 0, read = 0;
  ImportHook<"RegOpenKeyExA", decltype(RegOpenKeyExA)> open(
      [&](HKEY parent, LPCSTR path, DWORD options, REGSAM rights, HKEY* key) {
        EXPECT_EQ(0u, options);
        EXPECT_EQ(static_cast<REGSAM>(KEY_READ), rights);
        ++opened;
        return RegOpenKeyExA(parent, path, options, rights, key);
      });
  ImportHook<"RegQueryValueExA", decltype(RegQueryValueExA)> query(
      [&](HKEY key, LPCSTR value, DWORD* reserved, DWORD* type, BYTE* data, DWORD* size) {
        EXPECT_EQ(nullptr, reserved);
        ++read;
        return RegQueryValueExA(key, value, reserved, type, data, size);
      });
  Variant name;
  EXPECT_OK(ask(name));
  EXPECT_EQ(2, opened);
  EXPECT_EQ(2, read);
}

TEST_F(ProfileNameTest, NoSessionIsNeeded) {
  profile(0, L"0", L"name");
  Variant name;
  EXPECT_OK(ask(name));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(ProfileNameTest, VariantIsOverwrittenWithoutBeingCleared) {
  profile(0, L"0", L"name");
  Bstr kept(L"kept");
  VARIANT name;
  V_VT(&name) = VT_BSTR;
  V_BSTR(&name) = kept;
  SetLastError(0);
  EXPECT_OK(Make<IQUIVO>()->GetCurrentProfileNameVBS(&name));
  EXPECT_EQ(L"kept", kept.text());
  VariantClear(&name);
}

TEST_F(ProfileNameTest, NullPointerIsRefusedAfterTheRead) {
  profile(0, L"0", L"name");
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  SetLastError(0);
  EXPECT_HR(kInvalidArgument, quivo->GetCurrentProfileNameVBS(nullptr));
}

TEST_F(ProfileNameTest, MissingKeyGivesTheLastErrorOfTheThread) {
  Variant name = Variant::number(77);
  EXPECT_HR(0x80070005u, ask(name, ERROR_ACCESS_DENIED));
  EXPECT_EQ(VT_I4, name.type());
}

TEST_F(ProfileNameTest, MissingKeyWithoutALastErrorIsASuccessWithoutAName) {
  Variant name = Variant::number(77);
  EXPECT_OK(ask(name, 0));
  EXPECT_EQ(VT_I4, name.type());
}

TEST_F(ProfileNameTest, MissingSelectionGivesTheLastError) {
  WriteKey(user(), kProfiles);
  Variant name;
  EXPECT_HR(0x80070005u, ask(name, ERROR_ACCESS_DENIED));
  EXPECT_EQ(VT_EMPTY, name.type());
}

TEST_F(ProfileNameTest, MissingProfileGivesTheLastError) {
  WriteDword(user(), kProfiles, L"CurSel", 4);
  Variant name;
  EXPECT_HR(0x80070005u, ask(name, ERROR_ACCESS_DENIED));
  EXPECT_EQ(VT_EMPTY, name.type());
}

TEST_F(ProfileNameTest, MissingNameGivesTheLastError) {
  WriteDword(user(), kProfiles, L"CurSel", 3);
  WriteKey(user(), std::wstring(kProfiles) + L"\\3");
  Variant name;
  EXPECT_HR(0x80070005u, ask(name, ERROR_ACCESS_DENIED));
  EXPECT_EQ(VT_EMPTY, name.type());
}

TEST_F(ProfileNameTest, MissingSelectionWithoutALastErrorIsASuccessWithoutAName) {
  WriteKey(user(), kProfiles);
  WriteText(user(), std::wstring(kProfiles) + L"\\0", L"ProfileName", L"not selected");
  Variant name = Variant::number(77);
  EXPECT_OK(ask(name));
  EXPECT_EQ(VT_I4, name.type());
}

TEST_F(ProfileNameTest, SelectionOfMoreThanFourBytesIsNoNumber) {
  WriteText(user(), kProfiles, L"CurSel", L"a text that is longer");
  Variant name = Variant::number(77);
  EXPECT_OK(ask(name));
  EXPECT_EQ(VT_I4, name.type());
}

TEST_F(ProfileNameTest, MissingProfileWithoutALastErrorIsASuccessWithoutAName) {
  WriteDword(user(), kProfiles, L"CurSel", 4);
  Variant name = Variant::number(77);
  EXPECT_OK(ask(name));
  EXPECT_EQ(VT_I4, name.type());
}

TEST_F(ProfileNameTest, MissingNameWithoutALastErrorIsAnEmptyName) {
  WriteDword(user(), kProfiles, L"CurSel", 3);
  WriteKey(user(), std::wstring(kProfiles) + L"\\3");
  Variant name;
  EXPECT_OK(ask(name));
  EXPECT_EQ(L"", TextOf(name));
}

TEST_F(ProfileNameTest, LastErrorFromBeforeFailsEvenASuccessfulRead) {
  profile(0, L"0", L"name");
  Variant name;
  EXPECT_HR(0x80070005u, ask(name, ERROR_ACCESS_DENIED));
  EXPECT_EQ(VT_EMPTY, name.type());
}

TEST_F(ProfileNameTest, LongestNameFits) {
  const std::wstring longest(260, L'x');
  profile(0, L"0", longest.c_str());
  Variant name;
  EXPECT_OK(ask(name));
  EXPECT_EQ(longest, TextOf(name));
}

TEST_F(ProfileNameTest, LongerNameIsNotRead) {
  const std::wstring longer(261, L'x');
  profile(0, L"0", longer.c_str());
  Variant name;
  EXPECT_OK(ask(name));
  EXPECT_NE(longer, TextOf(name));
}

TEST_F(ProfileNameTest, MissingKeyIsReportedBeforeTheNullPointer) {
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  SetLastError(ERROR_ACCESS_DENIED);
  EXPECT_HR(0x80070005u, quivo->GetCurrentProfileNameVBS(nullptr));
}

TEST_F(ProfileNameTest, NameThatCannotBeAllocatedIsReported) {
  profile(0, L"0", L"name");
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  Variant name;
  SetLastError(0);
  Module::get().failAllocation(0);
  EXPECT_HR(kOutOfMemory, quivo->GetCurrentProfileNameVBS(name.out()));
  EXPECT_EQ(VT_EMPTY, name.type());
}

}  // namespace
