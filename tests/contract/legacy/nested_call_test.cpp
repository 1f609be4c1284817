// Calls of the legacy object that come in while another one shows a window, or while the engine works for it.
#include "contract/legacy/nested_test.h"

namespace {

using Names = std::vector<std::string>;

class LegacyNestedCalls : public LegacyNestedTest {
 protected:
  /// Runs every operation with a call that comes in while its window is open.
  void duringEveryWindow(const std::function<void()>& nested) {
    for (const LegacyOperation& operation : all({messages(), sheets()})) {
      SCOPED_TRACE(operation.name);
      begin();
      operation.prepare();
      size_t windows = 0;
      desktop.duringMessage = desktop.duringSheet = [&] {
        if (windows++ == 0) nested();
      };
      Ipkiobj* called = object.get();
      EXPECT_HR(operation.result, operation.call(called));
      EXPECT_LE(1u, windows);
      EXPECT_EQ(Names{}, engine().violations());
    }
  }
  /// Runs every operation once for each of its engine calls, with a call that comes in from inside it.
  void insideEveryEngineCall(const std::function<void()>& nested) {
    for (const LegacyOperation& operation : all({messages(), sheets(), others()})) {
      begin();
      operation.prepare();
      operation.call(object.get());
      const Names functions = engine().names();
      for (size_t position = 0; position < functions.size(); ++position) {
        SCOPED_TRACE(operation.name + ", " + std::to_string(position) + ", " + functions[position]);
        begin();
        operation.prepare();
        size_t calls = 0;
        bool isNested = false;
        const auto during = [&] {
          if (isNested || calls++ != position) return;
          isNested = true;
          nested();
        };
        for (const std::string& function : functions) engine().on(function).during = during;
        operation.call(object.get());
        EXPECT_TRUE(isNested);
        EXPECT_EQ(Names{}, engine().violations());
        for (const std::string& function : functions) engine().on(function).during = nullptr;
        object->FreeRecipCerts();
        EXPECT_EQ(Names{}, engine().outstanding());
        object->Uninit();
        EXPECT_EQ(0u, engine().openSessions());
      }
    }
  }
  std::vector<uint64_t> sessionsOf(const std::string& function) {
    std::vector<uint64_t> sessions;
    for (const fake::Call& call : engine().calls())
      if (call.function == function) sessions.push_back(call.value(0));
    return sessions;
  }
};

TEST_F(LegacyNestedCalls, ResultIsKeptWhenTheSessionIsClosedDuringTheWindow) {
  duringEveryWindow([&] { EXPECT_OK(object->Uninit()); });
}

TEST_F(LegacyNestedCalls, ResultIsKeptWhenTheSessionIsReplacedDuringTheWindow) {
  duringEveryWindow([&] { reopen(); });
}

TEST_F(LegacyNestedCalls, ResultIsKeptWhenTheRecipientsAreReplacedDuringTheWindow) {
  duringEveryWindow([&] { EXPECT_OK(object->SetRecipients(Bstr(L"EX:b"))); });
}

TEST_F(LegacyNestedCalls, ResultIsKeptWhenAnotherOperationFailsDuringTheWindow) {
  duringEveryWindow([&] {
    engine().once("QUIVO_EncryptFile").result = 0x7099;
    EXPECT_HR(0x80007099u, encrypt(object));
  });
}

TEST_F(LegacyNestedCalls, ObjectReleasedDuringTheWindowLivesUntilTheEnd) {
  duringEveryWindow([&] {
    object.reset();
    EXPECT_EQ(1, Module::get().liveObjects());
  });
  engine().reset();
}

TEST_F(LegacyNestedCalls, SessionClosedInsideAnyEngineCallServesItsOperationToTheEnd) {
  insideEveryEngineCall([&] { EXPECT_OK(object->Uninit()); });
}

TEST_F(LegacyNestedCalls, SessionReplacedInsideAnyEngineCallServesItsOperationToTheEnd) {
  insideEveryEngineCall([&] { reopen(); });
}

TEST_F(LegacyNestedCalls, RecipientsReplacedInsideAnyEngineCallAreGivenBack) {
  insideEveryEngineCall([&] { EXPECT_GE(object->SetRecipients(Bstr(L"EX:b")), 0); });
}

TEST_F(LegacyNestedCalls, RecipientAddedInsideAnyEngineCallIsGivenBack) {
  insideEveryEngineCall([&] { EXPECT_GE(object->AddRecipDERCert(Bstr(L"der")), 0); });
}

TEST_F(LegacyNestedCalls, RecipientsFreedInsideAnyEngineCallAreGivenBackOnce) {
  insideEveryEngineCall([&] { EXPECT_OK(object->FreeRecipCerts()); });
}

TEST_F(LegacyNestedCalls, SigningGoesOnWithTheSessionItStartedWith) {
  for (const Call& call : {sign, signAndEncrypt}) {
    begin();
    desktop.duringSheet = [&] {
      reopen();
      EXPECT_EQ(0u, engine().count("QUIVO_Uninitialize"));
    };
    EXPECT_OK(call(object));
    const Names names = engine().names();
    EXPECT_EQ("QUIVO_Uninitialize", names.back());
    for (const fake::Call& made : engine().calls()) {
      if (made.function == "QUIVO_Initialize") continue;
      EXPECT_EQ(0x7000u, made.value(0)) << made.function;
    }
    EXPECT_EQ(1u, engine().openSessions());
  }
}

TEST_F(LegacyNestedCalls, UninitDuringAnOperationReturnsSuccess) {
  engine().on("QUIVO_Uninitialize").result = 0x55;
  desktop.duringSheet = [&] {
    EXPECT_OK(object->Uninit());
    EXPECT_HR(S_FALSE, object->Uninit());
  };
  EXPECT_OK(verify(object));
  EXPECT_EQ(1u, engine().count("QUIVO_Uninitialize"));
}

TEST_F(LegacyNestedCalls, CallInsideUninitMeetsNoSession) {
  engine().once("QUIVO_Uninitialize").during = [&] {
    EXPECT_HR(S_FALSE, object->Uninit());
    EXPECT_OK(object->Init(Bstr(L"Other")));
  };
  EXPECT_OK(object->Uninit());
  EXPECT_EQ(1u, engine().openSessions());
  EXPECT_OK(object->Uninit());
}

TEST_F(LegacyNestedCalls, UninitLeavesASessionThatIsOpenedWhileItGivesRecipientsBack) {
  engine().once("QUIVO_FreeCert").during = [&] { reopen(); };
  EXPECT_HR(S_FALSE, object->Uninit());
  EXPECT_EQ((std::vector<uint64_t>{0x7000, 0x7000}), sessionsOf("QUIVO_FreeCert"));
  EXPECT_EQ(std::vector<uint64_t>{0x7000}, sessionsOf("QUIVO_Uninitialize"));
  EXPECT_EQ(1u, engine().openSessions());
}

class LegacyNestedInit : public LegacyTest {
 protected:
  void failOnce() {
    engine().once("QUIVO_Initialize").result = 0x7005;
    desktop.duringMessage = [&] {
      desktop.duringMessage = nullptr;
      nested();
    };
  }
  std::function<void()> nested;
};

TEST_F(LegacyNestedInit, ReturnsItsFailureWhenItsMessageOpensASession) {
  failOnce();
  nested = [&] { EXPECT_OK(object->Init(Bstr(L"Other"))); };
  EXPECT_HR(0x7005u, object->Init(Bstr(L"My")));
  EXPECT_OK(object->Init(Bstr(L"My")));
  EXPECT_EQ(2u, engine().count("QUIVO_Initialize"));
}

TEST_F(LegacyNestedInit, ReturnsItsFailureWhenItsMessageFailsInAnotherWay) {
  failOnce();
  engine().once("QUIVO_Initialize").result = 0x7006;
  nested = [&] { EXPECT_HR(0x7006u, object->Init(Bstr(L"Other"))); };
  EXPECT_HR(0x7005u, object->Init(Bstr(L"My")));
}

TEST_F(LegacyNestedInit, LivesUntilItsEndWhenItsMessageReleasesTheObject) {
  failOnce();
  nested = [&] {
    object.reset();
    EXPECT_EQ(1, Module::get().liveObjects());
  };
  EXPECT_HR(0x7005u, object.get()->Init(Bstr(L"My")));
}

TEST_F(LegacyNestedInit, LeavesASessionThatWasOpenedInsideItsEngineCall) {
  fake::Reply& outer = engine().once("QUIVO_Initialize");
  outer.handle = reinterpret_cast<void*>(0x7000);
  outer.during = [&] { EXPECT_OK(object->Init(Bstr(L"Other"))); };
  engine().once("QUIVO_Initialize").handle = reinterpret_cast<void*>(0x8000);
  EXPECT_OK(object->Init(Bstr(L"My")));
  EXPECT_EQ(0x7000u, engine().only("QUIVO_Uninitialize").value(0));
  EXPECT_HR(S_FALSE, object->IsSigned(Bstr(L"in")));
  EXPECT_EQ(0x8000u, engine().only("QUIVO_SignedInfoFile").value(0));
  EXPECT_EQ(2u, desktop.writes.size()) << "the times of the session that stays";
}

TEST_F(LegacyNestedInit, ReturnsTheStoredResultOfASessionOpenedInsideItsEngineCall) {
  // An engine that fails and leaves a session all the same.
  engine().once("QUIVO_Initialize").during = [&] { EXPECT_HR(0x77u, object->Init(Bstr(L"Other"))); };
  fake::Reply& inner = engine().once("QUIVO_Initialize");
  inner.result = 0x77;
  inner.handle = reinterpret_cast<void*>(0x4711);
  EXPECT_HR(0x77u, object->Init(Bstr(L"My")));
}

}  // namespace
