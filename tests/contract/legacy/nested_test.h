// The base of the tests of nested calls: every operation of the legacy object that shows a window, and what the engine
// answers for it.
#pragma once

#include "contract/legacy/legacy_test.h"
#include "support/certificates.h"
#include "support/records.h"
#include "support/temp_file.h"

/// One call of the legacy object, what the engine answers for it, and what it returns.
struct LegacyOperation {
  std::string name;
  std::function<void()> prepare;
  std::function<HRESULT(Ipkiobj*)> call;
  uint32_t result;
};

class LegacyNestedTest : public LegacyTest {
 protected:
  using Operations = std::vector<LegacyOperation>;

  void SetUp() override {
    LegacyTest::SetUp();
    object->Uninit();
    begin();
  }

  /// A session with the handle kFirst, one recipient, and an engine that succeeds.
  void begin() {
    if (object.get() == nullptr) object = Make<Ipkiobj>();
    object->Uninit();
    engine().reset();
    desktop.duringMessage = desktop.duringSheet = nullptr;
    engine().on("QUIVO_VerifyFile").signatures.resize(1);
    engine().on("QUIVO_DecryptFile").certificate = CertificateOf("CN=C");
    engine().on("QUIVO_DecryptAndVerifyFile").signatures.resize(1);
    engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=A"), CertificateOf("CN=B")};
    fake::Certificate valid;
    valid.subject = "CN=D";
    valid.notAfter = static_cast<uint32_t>(desktop.now) + 10;
    engine().on("QUIVO_VerifyCert").certificate = valid;
    engine().once("QUIVO_Initialize").handle = kFirst;
    openSession();
    EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a@b")));
    engine().forgetCalls();
  }

  void reopen() {
    EXPECT_OK(object->Uninit());
    EXPECT_OK(object->Init(Bstr(L"Other")));
  }

  Operations messages() {
    const auto fails = [this](const char* function) { return [=, this] { engine().on(function).result = 0x7020; }; };
    const auto unsignedFails = [this](const char* function) {
      return [=, this] {
        engine().on("QUIVO_SignedInfoFile").result = 1;
        engine().on(function).result = 0x7020;
      };
    };
    return {
        {"Sign, check", fails("QUIVO_VerifyFile"), sign, 0x7020},
        {"Sign", unsignedFails("QUIVO_SignFile"), sign, 0x80007020},
        {"Verify", fails("QUIVO_VerifyFile"), verify, 0x7020},
        {"Encrypt", fails("QUIVO_EncryptFile"), encrypt, 0x80007020},
        {"Unencrypt, access", [] {}, [](Ipkiobj* o) { return o->Unencrypt(Bstr(L"C:\\no"), Bstr(L"out"), 0); }, 1},
        {"SignAndEncrypt, check", fails("QUIVO_VerifyFile"), signAndEncrypt, 0x7020},
        {"SignAndEncrypt", unsignedFails("QUIVO_SignAndEncryptFile"), signAndEncrypt, 0x80007020},
        {"VerifyAndUnencrypt, access", [] {},
         [](Ipkiobj* o) { return o->VerifyAndUnencrypt(Bstr(L"C:\\no"), Bstr(L"out")); }, 1},
        {"VerifyAndUnencrypt", fails("QUIVO_DecryptAndVerifyFile"), verifyAndUnencrypt, 0x7020},
    };
  }
  Operations sheets() {
    const auto nothing = [] {};
    const auto remarks = [this](const char* function) {
      return [=, this] { engine().on(function).result = static_cast<int32_t>(kRemarks); };
    };
    return {
        {"Sign", nothing, sign, 0},
        {"Sign, remarks", remarks("QUIVO_VerifyFile"), sign, kRemarks},
        {"Verify", nothing, verify, 0},
        {"Verify, remarks", remarks("QUIVO_VerifyFile"), verify, kRemarks},
        {"Unencrypt", [this] { engine().on("QUIVO_DecryptFile").result = 0x7035; }, unencrypt, 0x7035},
        {"SignAndEncrypt", nothing, signAndEncrypt, 0},
        {"VerifyAndUnencrypt", remarks("QUIVO_DecryptAndVerifyFile"), verifyAndUnencrypt, kRemarks},
    };
  }
  /// Those that show no window of the module's.
  Operations others() {
    const auto nothing = [] {};
    return {
        {"Encrypt", nothing, encrypt, 0},
        {"IsSigned", nothing, [](Ipkiobj* o) { return o->IsSigned(Bstr(L"in")); }, 1},
        {"SetRecipients", nothing, [](Ipkiobj* o) { return o->SetRecipients(Bstr(L"SMTP:a@b;EX:c")); }, 0},
        {"SetRecipients, selection", nothing, [](Ipkiobj* o) { return o->SetRecipients(Bstr(L"")); }, 0},
        {"AddRecipDERCert", nothing, [](Ipkiobj* o) { return o->AddRecipDERCert(Bstr(L"der")); }, 0},
        {"FreeRecipCerts", nothing, [](Ipkiobj* o) { return o->FreeRecipCerts(); }, 0},
    };
  }
  static Operations all(std::initializer_list<Operations> lists) {
    Operations joined;
    for (const Operations& list : lists) joined.insert(joined.end(), list.begin(), list.end());
    return joined;
  }

  using Call = std::function<HRESULT(Ipkiobj*)>;
  const Call sign = [](Ipkiobj* o) { return o->Sign(Bstr(L"in"), Bstr(L"out"), 0); };
  const Call verify = [](Ipkiobj* o) { return o->Verify(Bstr(L"in"), Bstr(L"out")); };
  const Call encrypt = [](Ipkiobj* o) { return o->Encrypt(Bstr(L"in"), Bstr(L"out")); };
  const Call unencrypt = [this](Ipkiobj* o) { return o->Unencrypt(Bstr(file.path()), Bstr(L"out"), 1); };
  const Call signAndEncrypt = [](Ipkiobj* o) { return o->SignAndEncrypt(Bstr(L"in"), Bstr(L"out")); };
  const Call verifyAndUnencrypt = [this](Ipkiobj* o) { return o->VerifyAndUnencrypt(Bstr(file.path()), Bstr(L"out")); };

  void* const kFirst = reinterpret_cast<void*>(0x7000);
  const TempFile file{{1}, L".p7a"};
};
