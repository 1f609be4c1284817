// Late-bound calls of methods without outputs, with outputs in the middle, and failing ones.
#include "support/invoke.h"
#include "support/object_safety.h"
#include "support/operations.h"

namespace {

class LateBoundCallTest : public ContractTest {
 protected:
  LateResult run(const wchar_t* name, std::vector<VARIANT> arguments, bool wantsResult = false) {
    return Invoke(objects.quivo, {name, DISPATCH_METHOD, std::move(arguments), {}, wantsResult});
  }

  Objects objects{openQuivo()};
};

TEST_F(LateBoundCallTest, MethodWithoutOutputsIsCalled) {
  EXPECT_OK(run(L"AddCRL", {Variant::object(objects.id), Variant()}).result);
  EXPECT_EQ(1u, engine().count("QUIVO_AddCRL"));
}

TEST_F(LateBoundCallTest, NothingIsANullObject) {
  EXPECT_OK(run(L"AddCRL", {Variant::object(nullptr), Variant()}).result);
  EXPECT_TRUE(engine().only("QUIVO_AddCRL").record(1).allZero());
}

TEST_F(LateBoundCallTest, NullObjectOfAnOperationIsRefusedByTheMethod) {
  Variant output;
  EXPECT_HR(kInvalidArgument, run(L"SignMem", {Variant::object(nullptr), Variant(), Variant(), ByRef(output)}).result);
}

TEST_F(LateBoundCallTest, ObjectOfAnotherInterfaceIsRefused) {
  Variant output;
  EXPECT_TRUE(FAILED(run(L"SignMem", {Variant::object(objects.id), Variant(), Variant(), ByRef(output)}).result));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(LateBoundCallTest, FailureIsTheExceptionOfTheCall) {
  engine().on("QUIVO_ShowCrl").result = 0x19;
  const LateResult outcome = run(L"ShowCrl", {Variant()});
  EXPECT_HR(DISP_E_EXCEPTION, outcome.raw);
  EXPECT_HR(0xE0690019, outcome.result);
}

TEST_F(LateBoundCallTest, FailureLeavesAVariableAlone) {
  engine().on("QUIVO_HashMem").result = 0x19;
  Variant hash = Variant::text(L"before");
  EXPECT_HR(0xE0690019, run(L"HashMem", {Variant(), ByRef(hash)}).result);
  EXPECT_EQ(L"before", TextOf(hash));
}

TEST_F(LateBoundCallTest, FailureLeavesAHolderAlone) {
  engine().on("QUIVO_HashMem").result = 0x19;
  Holder holder(Holder::Kind::kExtendable);
  Variant argument = Variant::object(&holder);
  EXPECT_HR(0xE0690019, run(L"HashMem", {Variant(), argument}).result);
  EXPECT_FALSE(holder.wasSet());
}

TEST_F(LateBoundCallTest, FailureOfAMethodWithATextOutputLeavesTheVariableAlone) {
  engine().on("QUIVO_Ctrl").result = 0x19;
  Variant text = Variant::text(L"before");
  EXPECT_HR(0xE0690019, run(L"UpdateCrl", {ByRef(text)}).result);
  EXPECT_EQ(L"before", TextOf(text));
}

TEST_F(LateBoundCallTest, FailureOfAMethodWithACertificateLeavesTheVariableAlone) {
  engine().on("QUIVO_ParseCert").result = 0x19;
  Variant certificate = Variant::number(77);
  EXPECT_HR(0xE0690019, run(L"ParseCert", {Variant(), Variant::number(1), ByRef(certificate)}).result);
  EXPECT_EQ(VT_I4, certificate.type());
}

TEST_F(LateBoundCallTest, ResultsOfARejectedMessageReachTheVariable) {
  engine().on("QUIVO_VerifyMem").result = 0x19;
  engine().on("QUIVO_VerifyMem").signatures = {{0x19, 0, {}}};
  Variant output, results;
  EXPECT_HR(0xE0690019, run(L"VerifyMem",
                            {Variant::object(objects.verify), ByteArray({1}), Variant(), ByRef(output), ByRef(results)})
                            .result);
  EXPECT_EQ(1u, ObjectsOf(results).size());
}

TEST_F(LateBoundCallTest, CertificateOfARefusedFileReachesTheVariable) {
  engine().on("QUIVO_DecryptFile").result = 0x19;
  Variant certificate;
  EXPECT_HR(0xE0690019, run(L"DecryptFile", {Variant::object(objects.decrypt), Variant::text(L"a"), Variant::text(L"b"),
                                             ByRef(certificate)})
                            .result);
  EXPECT_EQ(VT_DISPATCH, certificate.type());
}

TEST_F(LateBoundCallTest, OutputInTheMiddleIsAVariable) {
  engine().on("QUIVO_ExportMem").output = {9};
  Variant output, yes = Variant::number(-1);
  V_VT(yes.out()) = VT_BOOL;
  V_BOOL(yes.out()) = VARIANT_TRUE;
  EXPECT_OK(run(L"ExportMem", {Variant::object(objects.exporting), ByRef(output), yes}).result);
  EXPECT_EQ((Bytes{9}), VbsBytesOf(output));
}

TEST_F(LateBoundCallTest, CountThatIsLeftReachesTheVariable) {
  engine().on("QUIVO_StrDecryptInitMem").left = 42;
  Variant left;
  EXPECT_OK(run(L"StrDecryptInitMem",
                {Variant::object(objects.decrypt), Variant(), ByRef(left), Variant::object(objects.stream)})
                .result);
  EXPECT_EQ(VT_I4, left.type());
  EXPECT_EQ(42, V_I4(&left.get()));
}

TEST_F(LateBoundCallTest, NumbersAndTextsOfScriptsAreConverted) {
  EXPECT_OK(run(L"Uninitialize", {}).result);
  EXPECT_OK(run(L"Initialize", {Variant::text(L"My"), Variant::text(L"5")}).result);
  EXPECT_EQ(5, engine().only("QUIVO_Initialize").number(1));
}

TEST_F(LateBoundCallTest, CaseOfTheNameDoesNotMatter) {
  EXPECT_OK(run(L"SHOWCRL", {Variant()}).result);
  EXPECT_EQ(1u, engine().count("QUIVO_ShowCrl"));
}

TEST_F(LateBoundCallTest, UntrustedDataModeHoldsForScripts) {
  Ptr<IObjectSafety> safety = objects.quivo.as<IObjectSafety>();
  EXPECT_OK(safety->SetInterfaceSafetyOptions(IID_IDispatch, 2, 2));
  Variant hash;
  EXPECT_HR(kAccessDenied, run(L"HashFile", {Variant::text(L"x"), ByRef(hash)}).result);
}

TEST_F(LateBoundCallTest, LegacyMethodsAreCalledByName) {
  Ptr<IDispatch> legacy = MakeUnknown(__uuidof(pkiobj), IID_IDispatch).as<IDispatch>();
  EXPECT_OK(Invoke(legacy, {L"FreeRecipCerts", DISPATCH_METHOD, {}, {}, false}).result);
}

}  // namespace
