// What registration asks of the registry: the rights, the reserved arguments, and what a failing call leads to.
#include "contract/com/registration.h"
#include "support/import_patch.h"

namespace {

constexpr REGSAM kTreeRights = DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE;

struct OpenedKey {
  HKEY parent, key;
  std::wstring name;
  DWORD options;
  REGSAM rights;
  bool wasEmptied = false;
};

struct CreatedKey {
  DWORD reserved;
  bool hasClass;
  DWORD options;
  REGSAM rights;
  bool hasSecurity;
};

struct WrittenValue {
  DWORD reserved, type, size;
  std::wstring text;
};

struct DeletedKey {
  HKEY parent;
  std::wstring name;
};

/// The functions of the registry, noted and passed on. `failing` names one that fails instead.
class RegistryCallsTest : public RegistrationTest {
 protected:
  static constexpr LSTATUS kFailure = ERROR_BADDB;

  /// The keys that were opened with a name.
  std::vector<OpenedKey> openedAs(const std::wstring& name) {
    std::vector<OpenedKey> found;
    std::copy_if(opened.begin(), opened.end(), std::back_inserter(found),
                 [&](const OpenedKey& key) { return key.name == name; });
    return found;
  }

  std::vector<OpenedKey> opened;
  std::vector<CreatedKey> created;
  std::vector<WrittenValue> written;
  std::vector<DeletedKey> deleted;
  std::string failing;

 private:
  bool fails(const char* function) { return failing == function; }

  ImportHook<"RegOpenKeyExW", decltype(RegOpenKeyExW)> open_{
      [this](HKEY parent, LPCWSTR name, DWORD options, REGSAM rights, HKEY* key) -> LSTATUS {
        if (fails("RegOpenKeyExW")) return kFailure;
        const LSTATUS status = RegOpenKeyExW(parent, name, options, rights, key);
        if (status == ERROR_SUCCESS) opened.push_back({parent, *key, name, options, rights});
        return status;
      }};
  ImportHook<"RegCreateKeyExW", decltype(RegCreateKeyExW)> create_{
      [this](HKEY parent, LPCWSTR name, DWORD reserved, LPWSTR className, DWORD options, REGSAM rights,
             LPSECURITY_ATTRIBUTES security, HKEY* key, LPDWORD disposition) -> LSTATUS {
        if (fails("RegCreateKeyExW")) return kFailure;
        created.push_back({reserved, className != nullptr, options, rights, security != nullptr});
        return RegCreateKeyExW(parent, name, reserved, className, options, rights, security, key, disposition);
      }};
  ImportHook<"RegSetValueExW", decltype(RegSetValueExW)> set_{
      [this](HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) -> LSTATUS {
        if (fails("RegSetValueExW")) return kFailure;
        written.push_back({reserved, type, size, reinterpret_cast<const wchar_t*>(data)});
        return RegSetValueExW(key, name, reserved, type, data, size);
      }};
  ImportHook<"RegDeleteTreeW", decltype(RegDeleteTreeW)> empty_{[this](HKEY key, LPCWSTR name) -> LSTATUS {
    if (fails("RegDeleteTreeW")) return kFailure;
    EXPECT_EQ(nullptr, name) << "the rights are those of the tree's own handle";
    // Handles are used again: the last key that got this one.
    auto tree = std::find_if(opened.rbegin(), opened.rend(), [&](const OpenedKey& other) { return other.key == key; });
    if (tree != opened.rend()) tree->wasEmptied = true;
    return RegDeleteTreeW(key, name);
  }};
  ImportHook<"RegDeleteKeyW", decltype(RegDeleteKeyW)> delete_{[this](HKEY parent, LPCWSTR name) -> LSTATUS {
    if (fails("RegDeleteKeyW")) return kFailure;
    deleted.push_back({parent, name});
    return RegDeleteKeyW(parent, name);
  }};
  ImportHook<"RegDeleteValueW", decltype(RegDeleteValueW)> unset_{[this](HKEY key, LPCWSTR name) -> LSTATUS {
    return fails("RegDeleteValueW") ? kFailure : RegDeleteValueW(key, name);
  }};
  ImportHook<"RegQueryInfoKeyW", decltype(RegQueryInfoKeyW)> query_{[this](HKEY key, auto... rest) -> LSTATUS {
    return fails("RegQueryInfoKeyW") ? kFailure : RegQueryInfoKeyW(key, rest...);
  }};
};

TEST_F(RegistryCallsTest, ClassTreeIsDeletedWithExactlyTheRightsThatThisNeeds) {
  EXPECT_OK(install());
  // A registration deletes the former trees.
  for (bool again : {true, false}) {
    opened.clear();
    deleted.clear();
    EXPECT_OK(again ? install() : uninstall());
    for (const RegisteredClass& row : kRegistered) {
      const auto trees = openedAs(row.clsid);
      ASSERT_EQ(1u, trees.size()) << row;
      EXPECT_TRUE(trees[0].wasEmptied) << row;
      EXPECT_EQ(kTreeRights, trees[0].rights) << row;
      EXPECT_TRUE(std::any_of(deleted.begin(), deleted.end(), [&](const DeletedKey& key) {
        return key.parent == trees[0].parent && key.name == row.clsid;
      })) << row;
    }
  }
}

TEST_F(RegistryCallsTest, OtherKeysAreOpenedForWhatIsDoneWithThem) {
  EXPECT_OK(install());
  opened.clear();
  EXPECT_OK(uninstall());
  for (const OpenedKey& key : opened) {
    const bool holdsTheClasses = key.name == L"CLSID" && key.parent == HKEY_CLASSES_ROOT;
    const REGSAM expected = holdsTheClasses ? KEY_READ : KEY_QUERY_VALUE | KEY_SET_VALUE;
    EXPECT_EQ(key.wasEmptied ? kTreeRights : expected, key.rights) << AnsiOf(key.name);
  }
}

TEST_F(RegistryCallsTest, ReservedArgumentsAreZero) {
  EXPECT_OK(install());
  EXPECT_OK(install());
  EXPECT_OK(uninstall());
  EXPECT_NE(0u, opened.size());
  for (const OpenedKey& key : opened) EXPECT_EQ(0u, key.options);
  EXPECT_NE(0u, created.size());
  for (const CreatedKey& key : created) {
    EXPECT_EQ(0u, key.reserved);
    EXPECT_FALSE(key.hasClass);
    EXPECT_EQ(static_cast<DWORD>(REG_OPTION_NON_VOLATILE), key.options);
    EXPECT_EQ(static_cast<REGSAM>(KEY_READ | KEY_WRITE), key.rights);
    EXPECT_FALSE(key.hasSecurity);
  }
  EXPECT_NE(0u, written.size());
  for (const WrittenValue& value : written) EXPECT_EQ(0u, value.reserved);
}

TEST_F(RegistryCallsTest, ValuesAreWrittenAsTextsWithTheirTerminator) {
  EXPECT_OK(install());
  for (const WrittenValue& value : written) {
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), value.type);
    EXPECT_EQ((value.text.size() + 1) * sizeof(wchar_t), value.size);
  }
}

TEST_F(RegistryCallsTest, FailingCallsOfARegistrationAreReturned) {
  EXPECT_OK(install());
  for (const char* function :
       {"RegOpenKeyExW", "RegDeleteTreeW", "RegDeleteKeyW", "RegCreateKeyExW", "RegSetValueExW"}) {
    failing = function;
    EXPECT_HR(HRESULT_FROM_WIN32(kFailure), install()) << function;
  }
}

TEST_F(RegistryCallsTest, FailingCallsOfAnUnregistrationAreReturned) {
  for (const char* function :
       {"RegOpenKeyExW", "RegDeleteTreeW", "RegDeleteKeyW", "RegDeleteValueW", "RegQueryInfoKeyW"}) {
    failing.clear();
    EXPECT_OK(install());
    failing = function;
    EXPECT_HR(HRESULT_FROM_WIN32(kFailure), uninstall()) << function;
  }
}

TEST_F(RegistryCallsTest, LibraryWhoseKeyCannotBeReadCountsAsRegistered) {
  ImportHook<"UnRegisterTypeLib", decltype(UnRegisterTypeLib)> library([this](auto...) -> HRESULT {
    failing = "RegOpenKeyExW";
    return TYPE_E_REGISTRYACCESS;
  });
  EXPECT_HR(TYPE_E_REGISTRYACCESS, uninstall());
}

using RegistrationMemoryTest = RegistrationTest;

/// Of the first class alone: the scripts of the others do not come into it.
RegistryTree KeysOfTheFirstClass() {
  RegistryTree keys = KeysOf(kRegistered[0], Module::get().path());
  keys[L"CLSID"] = kNoValue;
  return keys;
}

TEST_F(RegistrationMemoryTest, ScriptThatCannotBeParsedWritesNothing) {
  long allocations = 0;
  for (; !KeyExists(root(), kRegistered[0].key()); ++allocations) {
    ASSERT_LT(allocations, 100);
    EXPECT_TREE(RegistryTree{}, ReadTree(root()));
    Module::get().failAllocation(allocations);
    EXPECT_HR(E_OUTOFMEMORY, install());
    EXPECT_TRUE(Module::get().allocationFailed());
  }
  // The last run failed in the script of the second class.
  EXPECT_GT(allocations, 1);
  EXPECT_TREE(KeysOfTheFirstClass(), ClassesIn(root()));
  EXPECT_FALSE(KeyExists(root(), L"TypeLib"));
}

TEST_F(RegistrationMemoryTest, ScriptThatCannotBeParsedRemovesNothing) {
  for (long allocations = 0;; ++allocations) {
    ASSERT_LT(allocations, 100);
    EXPECT_OK(install());
    Module::get().failAllocation(allocations);
    EXPECT_HR(E_OUTOFMEMORY, uninstall());
    EXPECT_TRUE(Module::get().allocationFailed());
    EXPECT_FALSE(KeyExists(root(), LibraryKey()));
    if (!KeyExists(root(), kRegistered[0].key())) {
      EXPECT_GT(allocations, 1);
      break;
    }
    EXPECT_TREE(KeysOfTheFirstClass(), ClassesIn(root()));
  }
}

}  // namespace
