// Null objects and null outputs: refused before the engine is called, where a method has no rule of its own.
#include "contract/operations/calls.h"

namespace {

using NullArgumentTest = ContractTest;

struct NullCall {
  const char* name;
  HRESULT (*call)(const Objects&);
};

const NullCall kNullObjects[]{
    {"SignMem", [](const Objects& o) { return o.quivo->SignMem(nullptr, bytes({1}), Variant(), Variant().out()); }},
    {"SignFile", [](const Objects& o) { return o.quivo->SignFile(nullptr, nullptr, nullptr, Bstr(L"x")); }},
    {"StrSignFile", [](const Objects& o) { return o.quivo->StrSignFile(nullptr, nullptr, nullptr, Bstr(L"x")); }},
    {"VerifyMem",
     [](const Objects& o) {
       return o.quivo->VerifyMem(nullptr, bytes({1}), Variant(), Variant().out(), Variant().out());
     }},
    {"VerifyFile",
     [](const Objects& o) { return o.quivo->VerifyFile(nullptr, nullptr, Bstr(L"x"), nullptr, Variant().out()); }},
    {"StrVerifyFile",
     [](const Objects& o) { return o.quivo->StrVerifyFile(nullptr, nullptr, Bstr(L"x"), nullptr, Variant().out()); }},
    {"EncryptMem", [](const Objects& o) { return o.quivo->EncryptMem(nullptr, bytes({1}), Variant().out()); }},
    {"EncryptFile", [](const Objects& o) { return o.quivo->EncryptFile(nullptr, Bstr(L"x"), Bstr(L"y")); }},
    {"StrEncryptFile", [](const Objects& o) { return o.quivo->StrEncryptFile(nullptr, Bstr(L"x"), Bstr(L"y")); }},
    {"DecryptMem",
     [](const Objects& o) {
       return o.quivo->DecryptMem(nullptr, bytes({1}), Variant().out(), Ptr<ICertificate>().out());
     }},
    {"DecryptFile",
     [](const Objects& o) { return o.quivo->DecryptFile(nullptr, Bstr(L"x"), Bstr(L"y"), Ptr<ICertificate>().out()); }},
    {"StrDecryptFile",
     [](const Objects& o) {
       return o.quivo->StrDecryptFile(nullptr, Bstr(L"x"), Bstr(L"y"), Ptr<ICertificate>().out());
     }},
    {"FindCert", [](const Objects& o) { return o.quivo->FindCert(nullptr, Variant().out()); }},
    {"ExportMem", [](const Objects& o) { return o.quivo->ExportMem(nullptr, Variant().out(), VARIANT_FALSE); }},
    {"ExportFile", [](const Objects& o) { return o.quivo->ExportFile(nullptr, Bstr(L"x")); }},
    {"ImportMem", [](const Objects& o) { return o.quivo->ImportMem(nullptr, bytes({1})); }},
    {"ImportFile", [](const Objects& o) { return o.quivo->ImportFile(nullptr, Bstr(L"x")); }},
    {"CreateXmlRequest",
     [](const Objects& o) {
       return o.quivo->CreateXmlRequest(Flag_Xml_Request_Do_Not_Generate, nullptr, Variant().out(), VARIANT_FALSE);
     }},
    {"StrSignInitMem", [](const Objects& o) { return o.quivo->StrSignInitMem(nullptr, Variant(), o.stream); }},
    {"StrSignUpdateMem", [](const Objects& o) { return o.quivo->StrSignUpdateMem(nullptr, o.stream, Variant()); }},
    {"StrSignFinalMem", [](const Objects& o) { return o.quivo->StrSignFinalMem(nullptr, o.stream, Variant().out()); }},
    {"StrVerifyInitMem", [](const Objects& o) { return o.quivo->StrVerifyInitMem(nullptr, Variant(), o.stream); }},
    {"StrVerifyUpdateMem", [](const Objects& o) { return o.quivo->StrVerifyUpdateMem(nullptr, o.stream, Variant()); }},
    {"StrVerifyFinalMem",
     [](const Objects& o) { return o.quivo->StrVerifyFinalMem(nullptr, o.stream, Variant().out(), Variant().out()); }},
    {"StrEncryptInitMem", [](const Objects& o) { return o.quivo->StrEncryptInitMem(nullptr, o.stream); }},
    {"StrEncryptUpdateMem",
     [](const Objects& o) { return o.quivo->StrEncryptUpdateMem(nullptr, o.stream, Variant(), Variant().out()); }},
    {"StrEncryptFinalMem",
     [](const Objects& o) { return o.quivo->StrEncryptFinalMem(nullptr, o.stream, Variant().out()); }},
    {"StrDecryptInitMem",
     [](const Objects& o) { return o.quivo->StrDecryptInitMem(nullptr, Variant(), Variant().out(), o.stream); }},
    {"StrDecryptUpdateMem",
     [](const Objects& o) {
       return o.quivo->StrDecryptUpdateMem(nullptr, o.stream, Variant(), Variant().out(), Variant().out());
     }},
    {"StrDecryptFinalMem",
     [](const Objects& o) { return o.quivo->StrDecryptFinalMem(nullptr, o.stream, Ptr<ICertificate>().out()); }},
};

const NullCall kNullStreams[]{
    {"StrSignInitMem", [](const Objects& o) { return o.quivo->StrSignInitMem(o.sign, Variant(), nullptr); }},
    {"StrSignUpdateMem", [](const Objects& o) { return o.quivo->StrSignUpdateMem(o.sign, nullptr, Variant()); }},
    {"StrSignFinalMem", [](const Objects& o) { return o.quivo->StrSignFinalMem(o.sign, nullptr, Variant().out()); }},
    {"StrVerifyInitMem", [](const Objects& o) { return o.quivo->StrVerifyInitMem(o.verify, Variant(), nullptr); }},
    {"StrVerifyUpdateMem", [](const Objects& o) { return o.quivo->StrVerifyUpdateMem(o.verify, nullptr, Variant()); }},
    {"StrVerifyFinalMem",
     [](const Objects& o) { return o.quivo->StrVerifyFinalMem(o.verify, nullptr, Variant().out(), Variant().out()); }},
    {"StrEncryptInitMem", [](const Objects& o) { return o.quivo->StrEncryptInitMem(o.encrypt, nullptr); }},
    {"StrEncryptUpdateMem",
     [](const Objects& o) { return o.quivo->StrEncryptUpdateMem(o.encrypt, nullptr, Variant(), Variant().out()); }},
    {"StrEncryptFinalMem",
     [](const Objects& o) { return o.quivo->StrEncryptFinalMem(o.encrypt, nullptr, Variant().out()); }},
    {"StrDecryptInitMem",
     [](const Objects& o) { return o.quivo->StrDecryptInitMem(o.decrypt, Variant(), Variant().out(), nullptr); }},
    {"StrDecryptUpdateMem",
     [](const Objects& o) {
       return o.quivo->StrDecryptUpdateMem(o.decrypt, nullptr, Variant(), Variant().out(), Variant().out());
     }},
    {"StrDecryptFinalMem",
     [](const Objects& o) { return o.quivo->StrDecryptFinalMem(o.decrypt, nullptr, Ptr<ICertificate>().out()); }},
    {"StrHashInitMem", [](const Objects& o) { return o.quivo->StrHashInitMem(Bstr(L"x"), nullptr); }},
    {"StrHashUpdateMem", [](const Objects& o) { return o.quivo->StrHashUpdateMem(nullptr, Variant()); }},
    {"StrHashFinalMem", [](const Objects& o) { return o.quivo->StrHashFinalMem(nullptr, Variant().out()); }},
};

/// Null outputs beside those of bytes, which the byte output tests cover.
const NullCall kNullOutputs[]{
    {"VerifyMem",
     [](const Objects& o) { return o.quivo->VerifyMem(o.verify, bytes({1}), Variant(), Variant().out(), nullptr); }},
    {"VerifyFile",
     [](const Objects& o) { return o.quivo->VerifyFile(o.verify, nullptr, Bstr(L"x"), nullptr, nullptr); }},
    {"StrVerifyFile",
     [](const Objects& o) { return o.quivo->StrVerifyFile(o.verify, nullptr, Bstr(L"x"), nullptr, nullptr); }},
    {"StrVerifyFinalMem",
     [](const Objects& o) { return o.quivo->StrVerifyFinalMem(o.verify, o.stream, Variant().out(), nullptr); }},
    {"DecryptMem",
     [](const Objects& o) { return o.quivo->DecryptMem(o.decrypt, bytes({1}), Variant().out(), nullptr); }},
    {"DecryptFile", [](const Objects& o) { return o.quivo->DecryptFile(o.decrypt, Bstr(L"x"), Bstr(L"y"), nullptr); }},
    {"StrDecryptFile",
     [](const Objects& o) { return o.quivo->StrDecryptFile(o.decrypt, Bstr(L"x"), Bstr(L"y"), nullptr); }},
    {"StrDecryptFinalMem", [](const Objects& o) { return o.quivo->StrDecryptFinalMem(o.decrypt, o.stream, nullptr); }},
    {"FindCert", [](const Objects& o) { return o.quivo->FindCert(o.find, nullptr); }},
    {"ParseCert", [](const Objects& o) { return o.quivo->ParseCert(bytes({1}), Field_All, nullptr); }},
};

template <size_t Count>
void expectAllRefused(const NullCall (&calls)[Count], const Objects& objects, fake::FakeEngine& engine) {
  for (const NullCall& row : calls) {
    EXPECT_HR(kInvalidArgument, row.call(objects)) << row.name;
    EXPECT_EQ(std::vector<std::string>{}, engine.names()) << row.name;
  }
}

TEST_F(NullArgumentTest, NullParameterObjectIsRefused) {
  expectAllRefused(kNullObjects, Objects(openQuivo()), engine());
}

TEST_F(NullArgumentTest, NullStreamContextIsRefused) { expectAllRefused(kNullStreams, Objects(openQuivo()), engine()); }

TEST_F(NullArgumentTest, NullOutputIsRefused) { expectAllRefused(kNullOutputs, Objects(openQuivo()), engine()); }

TEST_F(NullArgumentTest, UntrustedDataModeIsCheckedBeforeNullObjects) {
  Ptr<IQUIVO> quivo = untrustedQuivo();
  EXPECT_HR(kAccessDenied, quivo->SignFile(nullptr, nullptr, nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->StrSignFile(nullptr, nullptr, nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->VerifyFile(nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->StrVerifyFile(nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->EncryptFile(nullptr, nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->StrEncryptFile(nullptr, nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->DecryptFile(nullptr, nullptr, nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->StrDecryptFile(nullptr, nullptr, nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->HashFile(nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->StrHashFile(nullptr, nullptr, nullptr, VARIANT_FALSE));
  EXPECT_HR(kAccessDenied, quivo->ExportFile(nullptr, nullptr));
  EXPECT_HR(kAccessDenied, quivo->ImportFile(nullptr, nullptr));
}

}  // namespace
