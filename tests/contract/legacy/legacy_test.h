// The base of the legacy object's tests: an object, a machine key of its own, and a desktop that shows nothing.
#pragma once

#include "contract/legacy/desktop.h"
#include "support/contract_test.h"
#include "support/registry.h"

constexpr const wchar_t* kLegacyKey = L"SOFTWARE\\KORVENTA\\tavlcom";
constexpr uint32_t kRemarks = 0xE0700019;

class LegacyTest : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    object = Make<Ipkiobj>();
  }
  void TearDown() override {
    if (object.get() != nullptr) object->Uninit();
    object.reset();
    ContractTest::TearDown();
  }

  /// Opens the object's session; the calls made for it are forgotten.
  void openSession() {
    EXPECT_OK(object->Init(Bstr(L"My")));
    engine().forgetCalls();
  }

  PrivateRoot machine{HKEY_LOCAL_MACHINE};
  LegacyDesktop desktop;
  Ptr<Ipkiobj> object;
};
