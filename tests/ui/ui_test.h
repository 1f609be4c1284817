// The base of the window tests: the legacy object with an open session of the fake engine, and real windows.
#pragma once

#include "support/contract_test.h"
#include "support/registry.h"
#include "ui/user.h"

constexpr const wchar_t* kSheetCaption = L"КОРВИС (x64)";
constexpr const wchar_t* kLegacyKey = L"SOFTWARE\\KORVENTA\\tavlcom";

class UiTest : public ContractTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// A file with a few bytes, in a folder of this test; gone with it.
  std::wstring create(const std::wstring& name, const std::string& content = "content");
  std::wstring path(const std::wstring& name) const { return folder + L"\\" + name; }
  bool exists(const std::wstring& name) const {
    return GetFileAttributesW(path(name).c_str()) != INVALID_FILE_ATTRIBUTES;
  }
  std::string contentOf(const std::wstring& name) const;
  /// Lets an engine function write its output file, the argument with an index, when it is given one.
  void letWrite(const char* function, size_t output, const std::string& content);

  PrivateRoot machine{HKEY_LOCAL_MACHINE};
  Ptr<Ipkiobj> object;
  std::wstring folder;
};
