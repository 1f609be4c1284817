// The script host's safety negotiation, and what it forbids.
#include "support/object_safety.h"
#include "support/operations.h"

namespace {

class SafetyTest : public ContractTest {
 protected:
  void SetUp() override {
    quivo_ = Make<IQUIVO>();
    safety_ = quivo_.as<IObjectSafety>();
    ASSERT_NE(nullptr, safety_.get());
  }
  HRESULT set(DWORD mask, DWORD enabled, REFIID iid = IID_IDispatch) {
    return safety_->SetInterfaceSafetyOptions(iid, mask, enabled);
  }
  /// The enabled options, as reported.
  DWORD enabled(REFIID iid = IID_IDispatch) {
    DWORD supported = 0, enabled = 0;
    EXPECT_OK(safety_->GetInterfaceSafetyOptions(iid, &supported, &enabled));
    EXPECT_EQ(3u, supported);
    return enabled;
  }
  bool fileMethodsAreRefused() {
    const HRESULT result = quivo_->SignFile(Make<ISignParam>(), nullptr, nullptr, Bstr(L"out"));
    return Hresult(result) == Hresult(kAccessDenied);
  }

 private:
  Ptr<IQUIVO> quivo_;
  Ptr<IObjectSafety> safety_;
};

constexpr DWORD kOff = 3, kOn = 1;

TEST_F(SafetyTest, NewObjectTrustsItsData) {
  EXPECT_EQ(kOff, enabled());
  EXPECT_FALSE(fileMethodsAreRefused());
}

TEST_F(SafetyTest, UntrustedDataModeIsReportedInReverse) {
  EXPECT_OK(set(2, 2));
  EXPECT_EQ(kOn, enabled());
  EXPECT_TRUE(fileMethodsAreRefused());
}

TEST_F(SafetyTest, ModeCanBeLeftAgain) {
  EXPECT_OK(set(2, 2));
  EXPECT_OK(set(2, 0));
  EXPECT_EQ(kOff, enabled());
  EXPECT_FALSE(fileMethodsAreRefused());
}

TEST_F(SafetyTest, CallerBitIsAcceptedWithoutAnEffect) {
  EXPECT_OK(set(1, 1));
  EXPECT_EQ(kOff, enabled());
  EXPECT_OK(set(2, 2));
  EXPECT_OK(set(1, 0));
  EXPECT_EQ(kOn, enabled());
}

TEST_F(SafetyTest, MaskWithoutTheDataBitChangesNothing) {
  EXPECT_OK(set(0, 2));
  EXPECT_EQ(kOff, enabled());
  EXPECT_OK(set(1, 3));
  EXPECT_EQ(kOff, enabled());
}

TEST_F(SafetyTest, DataBitOfTheOptionsDecides) {
  EXPECT_OK(set(3, 3));
  EXPECT_EQ(kOn, enabled());
  EXPECT_OK(set(3, 1));
  EXPECT_EQ(kOff, enabled());
}

TEST_F(SafetyTest, UnknownBitsOfTheMaskAreRefused) {
  for (DWORD mask : {4u, 6u, 7u, 0x80000002u}) {
    EXPECT_HR(0x80004005u, set(mask, 2));
    EXPECT_EQ(kOff, enabled());
  }
}

TEST_F(SafetyTest, UnknownBitsOfTheOptionsAreIgnored) {
  EXPECT_OK(set(2, 0xFFFFFFFE));
  EXPECT_EQ(kOn, enabled());
}

TEST_F(SafetyTest, RefusedMaskKeepsTheMode) {
  EXPECT_OK(set(2, 2));
  EXPECT_HR(E_FAIL, set(6, 0));
  EXPECT_EQ(kOn, enabled());
}

TEST_F(SafetyTest, EveryInterfaceIdentifierIsTreatedAlike) {
  EXPECT_OK(set(2, 2));
  EXPECT_EQ(kOn, enabled(IID_IUnknown));
  EXPECT_EQ(kOn, enabled(IID_IPersistStream));
  EXPECT_EQ(kOn, enabled(GUID_NULL));
  EXPECT_OK(set(2, 0, IID_IPersistStream));
  EXPECT_EQ(kOff, enabled());
  EXPECT_OK(set(2, 2, GUID_NULL));
  EXPECT_EQ(kOn, enabled());
}

TEST_F(SafetyTest, NullPointersForTheOptionsAreRefused) {
  Ptr<IObjectSafety> safety = Make<IQUIVO>().as<IObjectSafety>();
  DWORD options = 0;
  EXPECT_HR(E_POINTER, safety->GetInterfaceSafetyOptions(IID_IDispatch, nullptr, &options));
  EXPECT_HR(E_POINTER, safety->GetInterfaceSafetyOptions(IID_IDispatch, &options, nullptr));
}

std::vector<Operation> FileOperations() {
  return Where(Operations(), [](const Operation& operation) { return operation.hasFiles(); });
}

class UntrustedFileTest : public ContractTest, public ::testing::WithParamInterface<Operation> {};

TEST_P(UntrustedFileTest, FileMethodIsRefusedBeforeTheEngineIsCalled) {
  Objects objects(untrustedQuivo());
  EXPECT_HR(kAccessDenied, GetParam().call(objects));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

INSTANTIATE_TEST_SUITE_P(Methods, UntrustedFileTest, ::testing::ValuesIn(FileOperations()), NameOfRow<Operation>);

class UntrustedPathTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {};

TEST_P(UntrustedPathTest, FileMethodIsRefusedBeforeItsArgumentsAreLookedAt) {
  Objects objects(untrustedQuivo());
  EXPECT_HR(kAccessDenied, GetParam().call(objects, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Arguments, UntrustedPathTest,
                         ::testing::ValuesIn(Where(StringInputs(),
                                                   [](const auto& row) { return row.operation.hasFiles(); })),
                         NameOfRow<OperationArgument>);

class UntrustedMemoryTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {};

TEST_P(UntrustedMemoryTest, MemoryMethodIsNotAffected) {
  Objects objects(untrustedQuivo());
  EXPECT_OK(GetParam().call(objects, ByteArray({1})));
  EXPECT_EQ(1u, engine().count(GetParam().function));
}

INSTANTIATE_TEST_SUITE_P(Arguments, UntrustedMemoryTest, ::testing::ValuesIn(ByteInputs()),
                         NameOfRow<OperationArgument>);

class UntrustedOtherTest : public ContractTest, public ::testing::WithParamInterface<Operation> {};

TEST_P(UntrustedOtherTest, MethodWithoutFilesIsNotAffected) {
  Objects objects(untrustedQuivo());
  GetParam().call(objects);
  EXPECT_EQ(1u, engine().count(GetParam().function));
}

INSTANTIATE_TEST_SUITE_P(Methods, UntrustedOtherTest,
                         ::testing::ValuesIn(Where(Operations(), [](const auto& row) { return !row.hasFiles(); })),
                         NameOfRow<Operation>);

using UntrustedSessionTest = ContractTest;

TEST_F(UntrustedSessionTest, SessionMethodsAreNotAffected) {
  Ptr<IQUIVO> quivo = untrustedQuivo();
  EXPECT_OK(quivo->Initialize(Bstr(L"My"), Flag_Init_Noldap));
  EXPECT_OK(quivo->Uninitialize());
  EXPECT_OK(quivo->InitializeEx(Make<ILocalParam>()));
  EXPECT_OK(quivo->UpdateCrl(Bstr().inOut()));
  EXPECT_OK(quivo->Uninitialize());
  EXPECT_OK(quivo->InitMinimal());
  EXPECT_OK(quivo->GetPKIErrorText(5, Bstr().inOut()));
  EXPECT_OK(quivo->GetPKIErrorTextVBS(5, Variant().out()));
  EXPECT_HR(E_FAIL, quivo->CheckOID(Bstr(L"1.2"), Variant().out()));
  EXPECT_EQ(1u, engine().count("QUIVO_FindCert"));
}

}  // namespace
