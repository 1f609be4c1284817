// In which order the legacy object reads the clock, converts, shows and closes.
#include "contract/legacy/legacy_test.h"
#include "support/certificates.h"

namespace {

using Names = std::vector<std::string>;

Names events;

LSTATUS WINAPI CloseKey(HKEY key) {
  events.push_back("close");
  return RegCloseKey(key);
}

class LegacyOrder : public LegacyTest {
 protected:
  /// Lets the engine accept, after some seconds, a certificate that is valid between two moments.
  void letVerifyFor(int64_t seconds, int64_t from, int64_t to) {
    fake::Certificate certificate;
    certificate.notBefore = static_cast<uint32_t>(from);
    certificate.notAfter = static_cast<uint32_t>(to);
    engine().on("QUIVO_VerifyCert").certificate = certificate;
    engine().on("QUIVO_VerifyCert").during = [=, this] { desktop.now += seconds; };
  }
};

TEST_F(LegacyOrder, InitReadsTheClockOnceBeforeTheEngineOpens) {
  const DWORD before = static_cast<DWORD>(desktop.now);
  engine().on("QUIVO_Initialize").during = [&] { desktop.now += 1000; };
  EXPECT_OK(object->Init(Bstr(L"My")));
  EXPECT_EQ(1u, desktop.clockReads);
  ASSERT_EQ(2u, desktop.writes.size());
  EXPECT_EQ(before, desktop.writes[0].value);
  EXPECT_EQ(before, desktop.writes[1].value);
}

TEST_F(LegacyOrder, InitShowsItsFailureBeforeItClosesTheKey) {
  WriteKey(HKEY_LOCAL_MACHINE, kLegacyKey);
  const ImportPatch closing(Module::get().handle(), "RegCloseKey", reinterpret_cast<void*>(CloseKey));
  events.clear();
  desktop.duringMessage = [] { events.push_back("message"); };
  engine().on("QUIVO_Initialize").result = 0x7005;
  EXPECT_HR(0x7005u, object->Init(Bstr(L"My")));
  EXPECT_EQ((Names{"message", "close"}), events);
}

TEST_F(LegacyOrder, InitWritesTheTimesBeforeItClosesTheKey) {
  WriteKey(HKEY_LOCAL_MACHINE, kLegacyKey);
  const ImportPatch closing(Module::get().handle(), "RegCloseKey", reinterpret_cast<void*>(CloseKey));
  events.clear();
  engine().on("QUIVO_Initialize").during = [] { events.push_back("open"); };
  EXPECT_OK(object->Init(Bstr(L"My")));
  EXPECT_EQ((Names{"open", "close"}), events);
  EXPECT_EQ(2u, desktop.writes.size());
}

TEST_F(LegacyOrder, ACertificateThatBecomesValidWhileTheEngineChecksItIsAdded) {
  openSession();
  letVerifyFor(10, desktop.now + 5, desktop.now + 20);
  EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
}

TEST_F(LegacyOrder, ACertificateThatExpiresWhileTheEngineChecksItIsRefused) {
  openSession();
  letVerifyFor(10, desktop.now - 5, desktop.now + 5);
  EXPECT_HR(0xE0700036u, object->AddRecipDERCert(Bstr(L"der")));
}

TEST_F(LegacyOrder, AddressesAreConvertedBeforeTheListIsFreed) {
  openSession();
  engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=A")};
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a@b")));
  engine().forgetCalls();
  Module::get().failAllocation(0);
  EXPECT_HR(E_OUTOFMEMORY, object->SetRecipients(Bstr(L"SMTP:a@b")));
  Module::get().failAllocation(-1);
  EXPECT_EQ(Names{}, engine().names());
  EXPECT_OK(object->Encrypt(Bstr(L"in"), Bstr(L"out")));
  EXPECT_EQ(1, engine().only("QUIVO_EncryptFile").record(1).i32(16));
}

}  // namespace
