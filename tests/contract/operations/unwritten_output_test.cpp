// An engine that leaves its outputs unwritten, whether it reports a success or a failure: what the module then uses is
// zero, never what its memory held before.
#include <cstring>

#include "support/certificates.h"
#include "support/operations.h"
#include "support/temp_file.h"

namespace {

/// Fills the part of the stack that the next call uses, so that a variable without a value has a telling one.
[[gnu::noinline]] void SoilStack() {
  uint8_t dirt[48 * 1024];
  std::memset(dirt, 0x5A, sizeof dirt);
  asm volatile("" : : "r"(dirt) : "memory");
}

constexpr int32_t kResults[] = {0, 0x19};

class UnwrittenBytesTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  void SetUp() override { reply().writesNothing = true; }
  HRESULT run(bool vbs) {
    SoilStack();
    return GetParam().callInForm(objects, vbs, output.out());
  }
  fake::Reply& reply() { return engine().on(GetParam().function); }

  Objects objects{openQuivo()};
  Variant output = Variant::text(L"before");
};

TEST_P(UnwrittenBytesTest, SuccessHasNoBytes) {
  for (bool vbs : {false, true}) {
    objects.stream = Make<IStreamCtx>();
    output = Variant::text(L"before");
    EXPECT_OK(run(vbs));
    EXPECT_EQ(VT_EMPTY, output.type());
  }
  EXPECT_EQ(0u, engine().count("QUIVO_FreeMem"));
}

TEST_P(UnwrittenBytesTest, FailureHasNoBytes) {
  reply().result = 0x19;
  EXPECT_HR(0xE0690019, run(false));
  EXPECT_EQ(GetParam().isAlwaysWritten() ? VT_EMPTY : VT_BSTR, output.type());
  EXPECT_EQ(0u, engine().count("QUIVO_FreeMem"));
}

INSTANTIATE_TEST_SUITE_P(Results, UnwrittenBytesTest, ::testing::ValuesIn(OutputsOf(Output::kBytes)),
                         NameOfRow<OperationArgument>);

class UnwrittenOutputTest : public ContractTest {
 protected:
  /// What a function answers in this test, without writing anything.
  fake::Reply& silent(const char* function) {
    fake::Reply& reply = engine().on(function);
    reply.writesNothing = true;
    return reply;
  }
  /// The result of a call whose engine function answers `result`.
  template <class Call>
  void expectResult(const char* function, int32_t result, Call call) {
    SCOPED_TRACE(function);
    silent(function).result = result;
    SoilStack();
    EXPECT_HR(result == 0 ? 0u : 0xE0690000u | static_cast<uint32_t>(result), call());
  }

  Objects objects{openQuivo()};
  IQUIVO& quivo = *objects.quivo.get();
  // Made beforehand: whatever runs between the soiling and the call cleans the stack again.
  const Variant data = ByteArray({1}), nothing;
  Bstr path{L"path"};
};

TEST_F(UnwrittenOutputTest, VerificationHasNoSignatures) {
  for (int32_t result : kResults) {
    Variant results, message;
    expectResult("QUIVO_VerifyMem", result,
                 [&] { return quivo.VerifyMem(objects.verify, data, nothing, message.out(), results.out()); });
    EXPECT_EQ(0u, ObjectsOf(results).size());
    expectResult("QUIVO_VerifyFile", result,
                 [&] { return quivo.VerifyFile(objects.verify, path, path, path, results.out()); });
    EXPECT_EQ(0u, ObjectsOf(results).size());
    expectResult("QUIVO_StrVerifyFile", result,
                 [&] { return quivo.StrVerifyFile(objects.verify, path, path, path, results.out()); });
    EXPECT_EQ(0u, ObjectsOf(results).size());
    expectResult("QUIVO_StrVerifyFinalMem", result,
                 [&] { return quivo.StrVerifyFinalMem(objects.verify, objects.stream, message.out(), results.out()); });
    EXPECT_EQ(0u, ObjectsOf(results).size());
  }
}

TEST_F(UnwrittenOutputTest, ParsedOrDecryptedCertificateIsEmpty) {
  Ptr<ICertificate> certificate;
  expectResult("QUIVO_ParseCert", 0, [&] { return quivo.ParseCert(data, Field_All, certificate.out()); });
  EXPECT_EQ(L"", SubjectOf(certificate));
  Variant message;
  expectResult("QUIVO_DecryptMem", 0,
               [&] { return quivo.DecryptMem(objects.decrypt, data, message.out(), certificate.out()); });
  EXPECT_EQ(L"", SubjectOf(certificate));
  for (int32_t result : kResults) {
    expectResult("QUIVO_DecryptFile", result,
                 [&] { return quivo.DecryptFile(objects.decrypt, path, path, certificate.out()); });
    EXPECT_EQ(L"", SubjectOf(certificate));
    expectResult("QUIVO_StrDecryptFile", result,
                 [&] { return quivo.StrDecryptFile(objects.decrypt, path, path, certificate.out()); });
    EXPECT_EQ(L"", SubjectOf(certificate));
    expectResult("QUIVO_StrDecryptFinalMem", result,
                 [&] { return quivo.StrDecryptFinalMem(objects.decrypt, objects.stream, certificate.out()); });
    EXPECT_EQ(L"", SubjectOf(certificate));
  }
}

TEST_F(UnwrittenOutputTest, SearchFindsNothing) {
  Variant found, text;
  expectResult("QUIVO_FindCert", 0, [&] { return quivo.FindCert(objects.find, found.out()); });
  EXPECT_EQ(0u, ObjectsOf(found).size());
  SoilStack();
  EXPECT_HR(E_FAIL, quivo.GetMyCertB64(text.out()));
  SoilStack();
  EXPECT_HR(E_FAIL, quivo.CheckOID(Bstr(L"1.2.3"), text.out()));
  EXPECT_EQ(L"Не найден рабочий сертификат", TextOf(text));
}

TEST_F(UnwrittenOutputTest, NothingIsLeftOfADecryption) {
  for (int32_t result : kResults) {
    Variant init = Variant::number(77), update = Variant::number(77), output;
    expectResult("QUIVO_StrDecryptInitMem", result,
                 [&] { return quivo.StrDecryptInitMem(objects.decrypt, data, init.out(), objects.stream); });
    EXPECT_EQ(0, V_I4(&init.get()));
    expectResult("QUIVO_StrDecryptUpdateMem", result, [&] {
      return quivo.StrDecryptUpdateMem(objects.decrypt, objects.stream, data, update.out(), output.out());
    });
    EXPECT_EQ(0, V_I4(&update.get()));
    EXPECT_EQ(VT_EMPTY, output.type());
  }
}

TEST_F(UnwrittenOutputTest, TextsAreEmpty) {
  for (int32_t result : kResults) {
    Bstr text(L"before");
    silent("QUIVO_GetErrorText").result = result;
    SoilStack();
    EXPECT_OK(quivo.GetPKIErrorText(5, text.inOut()));
    EXPECT_EQ(L"", text.text());
  }
  Bstr description(L"before");
  expectResult("QUIVO_Ctrl", 0, [&] { return quivo.UpdateCrl(description.inOut()); });
  EXPECT_EQ(L"", description.text());
  description = Bstr(L"before");
  expectResult("QUIVO_Ctrl", 0x19, [&] { return quivo.UpdateCrl(description.inOut()); });
  EXPECT_EQ(L"before", description.text());
}

TEST_F(UnwrittenOutputTest, EncodedTextsAreEmpty) {
  TempFile file({1});
  path = Bstr(file.path());
  Variant text, explanation;
  engine().on("QUIVO_FindCert").certificates = {FullCertificate()};
  engine().on("QUIVO_SignMem").output = Bytes(300, 1);
  expectResult("QUIVO_EncodeMem", 0, [&] { return quivo.GetMyCertB64(text.out()); });
  EXPECT_EQ(L"", TextOf(text));
  text = Variant();
  expectResult("QUIVO_EncodeMem", 0,
               [&] { return quivo.SignFile2B64Mem(objects.sign, path, text.out(), explanation.out()); });
  EXPECT_EQ(L"", TextOf(text));
}

TEST_F(UnwrittenOutputTest, SessionStaysClosed) {
  Ptr<IQUIVO> closed = Make<IQUIVO>();
  Ptr<ILocalParam> local = Make<ILocalParam>();
  for (int32_t result : kResults) {
    expectResult("QUIVO_Initialize", result, [&] { return closed->Initialize(path, Init_Flag_t{}); });
    expectResult("QUIVO_InitializeEx", result, [&] { return closed->InitializeEx(local); });
    expectResult("QUIVO_InitMinimal", result, [&] { return closed->InitMinimal(); });
  }
  EXPECT_OK(closed->ShowCrl(Variant()));
  EXPECT_TRUE(engine().only("QUIVO_ShowCrl").null(0));
  EXPECT_OK(closed->Uninitialize());
  EXPECT_EQ(0u, engine().count("QUIVO_Uninitialize"));
}

TEST_F(UnwrittenOutputTest, StreamHasNoHandle) {
  Variant left;
  for (int32_t result : kResults) {
    expectResult("QUIVO_StrSignInitMem", result,
                 [&] { return quivo.StrSignInitMem(objects.sign, nothing, objects.stream); });
    expectResult("QUIVO_StrVerifyInitMem", result,
                 [&] { return quivo.StrVerifyInitMem(objects.verify, nothing, objects.stream); });
    expectResult("QUIVO_StrEncryptInitMem", result,
                 [&] { return quivo.StrEncryptInitMem(objects.encrypt, objects.stream); });
    expectResult("QUIVO_StrDecryptInitMem", result,
                 [&] { return quivo.StrDecryptInitMem(objects.decrypt, nothing, left.out(), objects.stream); });
    expectResult("QUIVO_StrHashInitMem", result, [&] { return quivo.StrHashInitMem(path, objects.stream); });
  }
  EXPECT_OK(quivo.StrHashUpdateMem(objects.stream, data));
  EXPECT_EQ(0u, engine().only("QUIVO_StrHashUpdateMem").record(1).u64(0));
}

}  // namespace
