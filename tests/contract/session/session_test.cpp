// Opening and closing the engine session of the main object.
#include "support/contract_test.h"

namespace {

class SessionTest : public ContractTest {
 protected:
  HRESULT initialize(const wchar_t* profile = L"My", uint32_t flags = 0) {
    return quivo_->Initialize(Bstr(profile), static_cast<Init_Flag_t>(flags));
  }
  Ptr<IQUIVO>& quivo() { return quivo_; }
  void SetUp() override { quivo_ = Make<IQUIVO>(); }
  void* kSession = reinterpret_cast<void*>(0x7654);

 private:
  Ptr<IQUIVO> quivo_;
};

TEST_F(SessionTest, ProfileAndFlagsReachTheEngine) {
  EXPECT_OK(initialize(L"Профиль", 0x80000801));
  const fake::Call& call = engine().only("QUIVO_Initialize");
  EXPECT_EQ("\xCF\xF0\xEE\xF4\xE8\xEB\xFC", call.text(0));
  EXPECT_EQ(0x80000801u, static_cast<uint32_t>(call.value(1)));
  EXPECT_TRUE(call.record(2).allZero());
}

TEST_F(SessionTest, FlagsWithoutAMeaningAreNotFiltered) {
  EXPECT_OK(initialize(L"My", 0x7FFFF008));
  EXPECT_EQ(0x7FFFF008u, static_cast<uint32_t>(engine().only("QUIVO_Initialize").value(1)));
}

TEST_F(SessionTest, CharactersOutsideTheCodePageAreReplaced) {
  EXPECT_OK(initialize(L"\x4E2D\x6587"));
  EXPECT_EQ("??", engine().only("QUIVO_Initialize").text(0));
}

TEST_F(SessionTest, OperationsUseTheHandleThatTheEngineStored) {
  engine().on("QUIVO_Initialize").handle = kSession;
  EXPECT_OK(initialize());
  EXPECT_OK(quivo()->ShowCrl(Variant()));
  EXPECT_EQ(0x7654u, engine().only("QUIVO_ShowCrl").value(0));
}

TEST_F(SessionTest, NullProfileFailsWithoutBeingRebased) {
  EXPECT_HR(0x80070057u, quivo()->Initialize(nullptr, Flag_Init_Noldap));
  EXPECT_EQ(0u, engine().count("QUIVO_Initialize"));
}

TEST_F(SessionTest, ProfileThatCannotBeAllocatedFailsWithoutBeingRebased) {
  Bstr profile(L"My");
  Module::get().failAllocation(0);
  EXPECT_HR(0x8007000Eu, quivo()->Initialize(profile, Flag_Init_Noldap));
}

TEST_F(SessionTest, EngineFailureOfEveryOpenIsMapped) {
  for (const char* function : {"QUIVO_Initialize", "QUIVO_InitMinimal", "QUIVO_InitializeEx"}) {
    engine().on(function).result = 0x1234;
  }
  EXPECT_HR(0xE0691234, initialize());
  EXPECT_HR(0xE0691234, quivo()->InitMinimal());
  EXPECT_HR(0xE0691234, quivo()->InitializeEx(Make<ILocalParam>()));
  EXPECT_HR(0xE0691234, quivo()->InitializeEx(Make<IRSrvParam>()));
}

TEST_F(SessionTest, ResultOneOfEveryOpenIsPassed) {
  for (const char* function : {"QUIVO_Initialize", "QUIVO_InitMinimal", "QUIVO_InitializeEx"}) {
    engine().on(function).result = 1;
  }
  EXPECT_HR(S_FALSE, initialize());
  EXPECT_HR(S_FALSE, quivo()->InitMinimal());
  EXPECT_HR(S_FALSE, quivo()->InitializeEx(Make<ILocalParam>()));
}

TEST_F(SessionTest, FailedOpenWithoutAHandleLeavesNoSession) {
  engine().once("QUIVO_Initialize").result = 5;
  EXPECT_HR(0xE0690005, initialize());
  EXPECT_OK(initialize());
}

TEST_F(SessionTest, FailedOpenThatLeftAHandleLeavesASession) {
  engine().on("QUIVO_Initialize").result = 5;
  engine().on("QUIVO_Initialize").handle = kSession;
  EXPECT_HR(0xE0690005, initialize());
  EXPECT_HR(kAlreadyInitialized, initialize());
}

TEST_F(SessionTest, MinimalSessionNeedsNoProfile) {
  EXPECT_OK(quivo()->InitMinimal());
  EXPECT_TRUE(engine().only("QUIVO_InitMinimal").record(0).allZero());
}

TEST_F(SessionTest, SecondOpenIsRefusedInEveryForm) {
  EXPECT_OK(initialize());
  engine().forgetCalls();
  EXPECT_HR(kAlreadyInitialized, initialize());
  EXPECT_HR(kAlreadyInitialized, quivo()->InitMinimal());
  EXPECT_HR(kAlreadyInitialized, quivo()->InitializeEx(Make<ILocalParam>()));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(SessionTest, OpenSessionIsCheckedBeforeTheArguments) {
  EXPECT_OK(quivo()->InitMinimal());
  EXPECT_HR(kAlreadyInitialized, quivo()->Initialize(nullptr, Flag_Init_Noldap));
  EXPECT_HR(kAlreadyInitialized, quivo()->InitializeEx(nullptr));
  EXPECT_HR(kAlreadyInitialized, quivo()->InitializeEx(Make<ICertId>()));
}

TEST_F(SessionTest, SessionStaysUsableAfterARefusedOpen) {
  engine().on("QUIVO_Initialize").handle = kSession;
  EXPECT_OK(initialize());
  EXPECT_HR(kAlreadyInitialized, quivo()->InitMinimal());
  EXPECT_OK(quivo()->ShowCrl(Variant()));
  EXPECT_EQ(0x7654u, engine().only("QUIVO_ShowCrl").value(0));
}

TEST_F(SessionTest, ClosingPassesTheHandle) {
  engine().on("QUIVO_Initialize").handle = kSession;
  EXPECT_OK(initialize());
  EXPECT_OK(quivo()->Uninitialize());
  EXPECT_EQ(0x7654u, engine().only("QUIVO_Uninitialize").value(0));
}

TEST_F(SessionTest, ClosingWithoutASessionCallsNothing) {
  EXPECT_OK(quivo()->Uninitialize());
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(SessionTest, SecondClosingCallsNothing) {
  EXPECT_OK(quivo()->InitMinimal());
  EXPECT_OK(quivo()->Uninitialize());
  EXPECT_OK(quivo()->Uninitialize());
  EXPECT_EQ(1u, engine().count("QUIVO_Uninitialize"));
}

TEST_F(SessionTest, ClosingAloneReturnsEngineCodesUnchanged) {
  for (uint32_t code : {0x1234u, 1u, 0x80070005u, 0xE0700019u}) {
    engine().on("QUIVO_Uninitialize").result = static_cast<int32_t>(code);
    EXPECT_OK(quivo()->InitMinimal());
    EXPECT_HR(code, quivo()->Uninitialize());
  }
}

TEST_F(SessionTest, FailedClosingClearsTheHandleToo) {
  engine().on("QUIVO_Uninitialize").result = 5;
  EXPECT_OK(quivo()->InitMinimal());
  EXPECT_HR(5u, quivo()->Uninitialize());
  EXPECT_OK(quivo()->Uninitialize());
  EXPECT_OK(quivo()->InitMinimal());
}

TEST_F(SessionTest, ReleaseClosesAnOpenSession) {
  engine().on("QUIVO_Initialize").handle = kSession;
  engine().on("QUIVO_Uninitialize").result = 5;
  EXPECT_OK(initialize());
  quivo().reset();
  EXPECT_EQ(0x7654u, engine().only("QUIVO_Uninitialize").value(0));
}

TEST_F(SessionTest, ReleaseWithoutASessionCallsNothing) {
  quivo().reset();
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(SessionTest, TwoObjectsHaveSessionsOfTheirOwn) {
  Ptr<IQUIVO> other = Make<IQUIVO>();
  engine().once("QUIVO_InitMinimal").handle = reinterpret_cast<void*>(0x100);
  engine().once("QUIVO_InitMinimal").handle = reinterpret_cast<void*>(0x200);
  EXPECT_OK(quivo()->InitMinimal());
  EXPECT_OK(other->InitMinimal());
  EXPECT_OK(quivo()->Uninitialize());
  EXPECT_OK(other->ShowCrl(Variant()));
  EXPECT_EQ(0x200u, engine().only("QUIVO_ShowCrl").value(0));
}

}  // namespace
