#include "callers.h"

void FaultTest::SetUp() {
  LegacyTest::SetUp();
  openSession();
  objects_ = std::make_unique<Objects>(openQuivo());
}

void FaultTest::TearDown() {
  objects_.reset();
  LegacyTest::TearDown();
}

std::ostream& operator<<(std::ostream& out, const Caller& caller) { return out << caller.name; }

namespace {

uint32_t Mapped(uint32_t code) {
  for (const MappedCode& row : kCodes)
    if (row.code == code) return row.mapped;
  throw std::invalid_argument("a code without a row");
}
uint32_t Raw(uint32_t code) { return code; }
uint32_t TopBit(uint32_t code) { return code | 0x80000000; }
Shown Always(HRESULT result) {
  return [result](uint32_t) { return static_cast<uint32_t>(result); };
}
/// Only a negative result is a failure.
Shown IfNegative(Shown shown, HRESULT otherwise) {
  return [=](uint32_t code) { return code & 0x80000000 ? shown(code) : static_cast<uint32_t>(otherwise); };
}

const Shown kIgnored = Always(S_OK);

HRESULT Call(FaultTest& test, const char* operation) { return OperationNamed(operation).call(test.arguments()); }

/// A main object without a session.
HRESULT Open(const std::function<HRESULT(IQUIVO&)>& open) {
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  return open(*quivo.get());
}

void AddSessions(std::vector<Caller>& all) {
  all.push_back({"QUIVO_Initialize", "Initialize", Mapped, [](FaultTest&) {
                   return Open([](IQUIVO& quivo) { return quivo.Initialize(Bstr(L"profile"), Init_Flag_t(0)); });
                 }});
  all.push_back({"QUIVO_InitializeEx", "InitializeEx", Mapped, [](FaultTest&) {
                   return Open([](IQUIVO& quivo) { return quivo.InitializeEx(Make<ILocalParam>()); });
                 }});
  all.push_back({"QUIVO_InitMinimal", "InitMinimal", Mapped,
                 [](FaultTest&) { return Open([](IQUIVO& quivo) { return quivo.InitMinimal(); }); }});
  all.push_back({"QUIVO_Uninitialize", "Uninitialize", Raw,
                 [](FaultTest& test) { return test.arguments().quivo->Uninitialize(); }});
}

void AddTexts(std::vector<Caller>& all) {
  all.push_back({"QUIVO_GetErrorText", "GetPKIErrorText", kIgnored, [](FaultTest& test) {
                   Bstr text;
                   return test.arguments().quivo->GetPKIErrorText(5, text.inOut());
                 }});
  all.push_back({"QUIVO_GetErrorText", "GetPKIErrorTextVBS", kIgnored, [](FaultTest& test) {
                   Variant text;
                   return test.arguments().quivo->GetPKIErrorTextVBS(5, text.out());
                 }});
  const auto sign = [](FaultTest& test) {
    Variant signature, text;
    test.answers().on("QUIVO_SignMem").output = {1, 2, 3};
    const HRESULT hr =
        test.arguments().quivo->SignFile2B64Mem(test.arguments().sign, Bstr(test.file()), signature.out(), text.out());
    EXPECT_EQ(FAILED(hr), signature.type() == VT_EMPTY);
    return hr;
  };
  all.push_back({"QUIVO_SignMem", "SignFile2B64Mem", Always(-1), sign});
  all.push_back({"QUIVO_EncodeMem", "SignFile2B64Mem", IfNegative(Always(-1), S_OK), sign});
  all.push_back({"QUIVO_EncodeMem", "GetMyCertB64", IfNegative(Mapped, S_OK), [](FaultTest& test) {
                   test.answers().on("QUIVO_FindCert").certificates = {FullCertificate()};
                   return Call(test, "GetMyCertB64");
                 }});
  all.push_back({"QUIVO_FindCert", "CheckOID", Always(E_FAIL), [](FaultTest& test) {
                   Variant text;
                   return test.arguments().quivo->CheckOID(Bstr(L"1.2.3"), text.out());
                 }});
}

void AddReturns(std::vector<Caller>& all) {
  all.push_back({"QUIVO_FreeMem", "HashMem", kIgnored, [](FaultTest& test) {
                   test.answers().on("QUIVO_HashMem").output = {1};
                   return Call(test, "HashMem");
                 }});
  all.push_back({"QUIVO_FreeVerifyResult", "VerifyMem", kIgnored, [](FaultTest& test) {
                   test.answers().on("QUIVO_VerifyMem").signatures = {{0, 0, FullCertificate()}};
                   return Call(test, "VerifyMem");
                 }});
  all.push_back({"QUIVO_FreeDecryptResult", "DecryptMem", kIgnored, [](FaultTest& test) {
                   test.answers().on("QUIVO_DecryptMem").certificate = FullCertificate();
                   return Call(test, "DecryptMem");
                 }});
  all.push_back({"QUIVO_FreeFindResult", "FindCert", kIgnored, [](FaultTest& test) {
                   test.answers().on("QUIVO_FindCert").certificates = {FullCertificate()};
                   return Call(test, "FindCert");
                 }});
  all.push_back({"QUIVO_FreeCert", "ParseCert", kIgnored, [](FaultTest& test) {
                   test.answers().on("QUIVO_ParseCert").certificate = FullCertificate();
                   return Call(test, "ParseCert");
                 }});
  all.push_back({"QUIVO_FreeSignedInfoResult", "IsSigned", Always(S_FALSE),
                 [](FaultTest& test) { return test.legacy().IsSigned(Bstr(L"in")); }});
}

/// The legacy object's methods that only work on files.
void AddLegacyFiles(std::vector<Caller>& all) {
  const auto add = [&](const char* function, const char* method, Shown shown,
                       std::function<HRESULT(Ipkiobj&, BSTR in, BSTR out)> call) {
    all.push_back({function, std::string("pkiobj") + method, std::move(shown),
                   [call](FaultTest& test) { return call(test.legacy(), Bstr(test.file()), Bstr(L"out")); }});
  };
  const auto sign = [](Ipkiobj& object, BSTR in, BSTR out) { return object.Sign(in, out, 0); };
  add("QUIVO_SignFile", "Sign", TopBit, sign);
  add("QUIVO_SignedInfoFile", "Sign", kIgnored, sign);
  add("QUIVO_VerifyFile", "Sign", Raw, sign);
  add("QUIVO_SignedInfoFile", "IsSigned", Always(S_FALSE),
      [](Ipkiobj& object, BSTR in, BSTR) { return object.IsSigned(in); });
  add("QUIVO_VerifyFile", "Verify", Raw, [](Ipkiobj& object, BSTR in, BSTR out) { return object.Verify(in, out); });
  add("QUIVO_EncryptFile", "Encrypt", TopBit,
      [](Ipkiobj& object, BSTR in, BSTR out) { return object.Encrypt(in, out); });
  add("QUIVO_DecryptFile", "Unencrypt", Raw,
      [](Ipkiobj& object, BSTR in, BSTR out) { return object.Unencrypt(in, out, 0); });
  const auto both = [](Ipkiobj& object, BSTR in, BSTR out) { return object.SignAndEncrypt(in, out); };
  add("QUIVO_SignAndEncryptFile", "SignAndEncrypt", TopBit, both);
  add("QUIVO_SignedInfoFile", "SignAndEncrypt", kIgnored, both);
  add("QUIVO_VerifyFile", "SignAndEncrypt", Raw, both);
  add("QUIVO_DecryptAndVerifyFile", "VerifyAndUnencrypt", Raw,
      [](Ipkiobj& object, BSTR in, BSTR out) { return object.VerifyAndUnencrypt(in, out); });
}

void AddLegacySessions(std::vector<Caller>& all) {
  all.push_back({"QUIVO_Initialize", "pkiobjInit", Raw, [](FaultTest&) {
                   Ptr<Ipkiobj> fresh = Make<Ipkiobj>();
                   return fresh->Init(Bstr(L"My"));
                 }});
  all.push_back({"QUIVO_Uninitialize", "pkiobjUninit", Raw, [](FaultTest& test) { return test.legacy().Uninit(); }});
  const auto set = [](FaultTest& test) { return test.legacy().SetRecipients(Bstr(L"SMTP:a@b")); };
  // Nobody is found, which is no success even if the search is one.
  all.push_back({"QUIVO_FindCert", "pkiobjSetRecipients", IfNegative(Raw, static_cast<HRESULT>(0x80000057)), set});
  const auto add = [](FaultTest& test) {
    fake::Certificate valid;
    valid.notAfter = 0xFFFFFFFF;
    test.answers().on("QUIVO_VerifyCert").certificate = valid;
    return test.legacy().AddRecipDERCert(Bstr(L"der"));
  };
  all.push_back({"QUIVO_VerifyCert", "pkiobjAddRecipDERCert", Raw, add});
  all.push_back({"QUIVO_AllocMem", "pkiobjAddRecipDERCert", Always(static_cast<HRESULT>(0x80000008)), add});
  all.push_back({"QUIVO_FreeCert", "pkiobjFreeRecipCerts", kIgnored, [add](FaultTest& test) {
                   add(test);
                   return test.legacy().FreeRecipCerts();
                 }});
}

}  // namespace

const std::vector<Caller>& Callers() {
  static const std::vector<Caller> kCallers = [] {
    std::vector<Caller> all;
    for (const Operation& operation : Operations())
      all.push_back({operation.function, operation.name, Mapped,
                     [operation](FaultTest& test) { return operation.call(test.arguments()); }});
    AddSessions(all);
    AddTexts(all);
    AddReturns(all);
    AddLegacyFiles(all);
    AddLegacySessions(all);
    return all;
  }();
  return kCallers;
}
