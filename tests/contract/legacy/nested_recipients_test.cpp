// Recipients of the legacy object that are changed while an operation reads them, or while they are searched.
#include <malloc.h>

#include <cstring>

#include "contract/legacy/nested_test.h"

namespace {

constexpr uint32_t kNoMemory = 0x80000008;

void OverwriteAndFree(void* block) {
  if (block != nullptr) std::memset(block, 0xDD, _msize(block));
  std::free(block);
}

/// Never grows a block where it stands.
void* Move(void* block, size_t size) {
  void* moved = std::malloc(size);
  if (block != nullptr) std::memcpy(moved, block, std::min(size, _msize(block)));
  OverwriteAndFree(block);
  return moved;
}

void* NoMemory(void*, size_t) { return nullptr; }

class LegacyNestedRecipients : public LegacyNestedTest {
 protected:
  static const fake::Snapshot& encryption(const fake::Call& call) {
    return call.record(call.function == "QUIVO_EncryptFile" ? 1 : 2);
  }
  size_t recipients() {
    engine().forgetCalls();
    EXPECT_OK(encrypt(object));
    return static_cast<size_t>(encryption(engine().only("QUIVO_EncryptFile")).i32(16));
  }
  /// A call that comes in while the engine encrypts, for both operations; the engine must go on reading.
  void whileTheEngineReads(const std::function<void()>& nested) {
    const std::map<std::string, Call> operations = {{"QUIVO_EncryptFile", encrypt},
                                                    {"QUIVO_SignAndEncryptFile", signAndEncrypt}};
    for (const auto& [function, operation] : operations) {
      SCOPED_TRACE(function);
      begin();
      bool isCalled = false;
      engine().once(function).during = [&] {
        isCalled = true;
        const fake::Snapshot param = encryption(engine().last());
        const auto array = reinterpret_cast<const uint8_t*>(param.pointer(24));
        const size_t size = engine().certificateSize();
        const Bytes before(array, array + 2 * size);
        nested();
        EXPECT_EQ(before, Bytes(array, array + 2 * size));
        EXPECT_STREQ("CN=A", *reinterpret_cast<const char* const*>(before.data() + 24));
        EXPECT_STREQ("CN=B", *reinterpret_cast<const char* const*>(before.data() + size + 24));
      };
      Ipkiobj* called = object.get();
      EXPECT_OK(operation(called));
      EXPECT_TRUE(isCalled);
      if (object.get() == nullptr) continue;
      object->Uninit();
      EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
      EXPECT_EQ(std::vector<std::string>{}, engine().violations());
    }
  }

 private:
  ImportPatch freeing_{Module::get().handle(), "free", reinterpret_cast<void*>(OverwriteAndFree)};
  ImportPatch growing_{Module::get().handle(), "realloc", reinterpret_cast<void*>(Move)};
};

TEST_F(LegacyNestedRecipients, FreedOnesAreReadToTheEnd) {
  whileTheEngineReads([&] {
    EXPECT_OK(object->FreeRecipCerts());
    EXPECT_OK(object->FreeRecipCerts());
  });
}

TEST_F(LegacyNestedRecipients, ReplacedOnesAreReadToTheEnd) {
  whileTheEngineReads([&] { EXPECT_OK(object->SetRecipients(Bstr(L"EX:b"))); });
}

TEST_F(LegacyNestedRecipients, OnesOfAClosedSessionAreReadToTheEnd) {
  whileTheEngineReads([&] { EXPECT_OK(object->Uninit()); });
  whileTheEngineReads([&] {
    reopen();
    EXPECT_OK(object->SetRecipients(Bstr(L"EX:b")));
  });
}

TEST_F(LegacyNestedRecipients, OnesOfAReleasedObjectAreReadToTheEnd) {
  whileTheEngineReads([&] { object.reset(); });
  EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
  engine().reset();
}

TEST_F(LegacyNestedRecipients, AListThatGrowsIsReadToTheEndAsItWas) {
  whileTheEngineReads([&] {
    EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
    EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
  });
}

TEST_F(LegacyNestedRecipients, AListThatGrowsAndIsFreedIsReadToTheEnd) {
  whileTheEngineReads([&] {
    EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
    EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
    EXPECT_OK(object->FreeRecipCerts());
    EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
  });
}

TEST_F(LegacyNestedRecipients, AnAdditionCountsForTheNextOperation) {
  engine().once("QUIVO_EncryptFile").during = [&] { EXPECT_OK(object->AddRecipDERCert(Bstr(L"der"))); };
  EXPECT_EQ(2u, recipients());
  EXPECT_EQ(3u, recipients());
}

TEST_F(LegacyNestedRecipients, AListThatCannotGrowWhileItIsReadStaysAsItIs) {
  engine().once("QUIVO_EncryptFile").during = [&] {
    const ImportPatch full(Module::get().handle(), "realloc", reinterpret_cast<void*>(NoMemory));
    EXPECT_HR(kNoMemory, object->AddRecipDERCert(Bstr(L"der")));
  };
  EXPECT_EQ(2u, recipients());
  EXPECT_EQ(2u, recipients());
}

TEST_F(LegacyNestedRecipients, EachIsGivenBackAtTheEndOfTheLastOperationThatReadsIt) {
  engine().once("QUIVO_EncryptFile").during = [&] {
    engine().once("QUIVO_SignAndEncryptFile").during = [&] { EXPECT_OK(object->FreeRecipCerts()); };
    EXPECT_OK(signAndEncrypt(object));
    EXPECT_EQ(0u, engine().count("QUIVO_FreeCert"));
  };
  EXPECT_OK(encrypt(object));
  EXPECT_EQ(2u, engine().count("QUIVO_FreeCert"));
  EXPECT_EQ(0u, recipients());
}

TEST_F(LegacyNestedRecipients, GivenBackLateAreGivenBackInTheirOrder) {
  engine().once("QUIVO_EncryptFile").during = [&] {
    EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
    EXPECT_OK(object->FreeRecipCerts());
    engine().forgetCalls();
  };
  EXPECT_OK(encrypt(object));
  ASSERT_EQ(3u, engine().calls().size());
  EXPECT_EQ("CN=A", engine().calls()[0].record(1).text(24));
  EXPECT_EQ("CN=B", engine().calls()[1].record(1).text(24));
  EXPECT_EQ(0x10000u, engine().calls()[2].record(1).u32(0));
}

TEST_F(LegacyNestedRecipients, EncryptionAfterTheSheetIsForThoseSetWhenItWasCalled) {
  const std::vector<std::function<void()>> changes = {[&] { EXPECT_OK(object->FreeRecipCerts()); }, [&] { reopen(); },
                                                      [&] { EXPECT_OK(object->AddRecipDERCert(Bstr(L"der"))); }};
  for (const auto& change : changes) {
    begin();
    desktop.duringSheet = change;
    EXPECT_OK(signAndEncrypt(object));
    const fake::Snapshot& param = encryption(engine().only("QUIVO_SignAndEncryptFile"));
    ASSERT_EQ(2, param.i32(16));
    EXPECT_EQ("CN=A", param.at(24).text(24));
    EXPECT_EQ("CN=B", CertificateAt(param.at(24), 1).text(24));
  }
}

TEST_F(LegacyNestedRecipients, AnAdditionWithoutGrowthIsForTheNextOperationToo) {
  // Room that was made for a record, for which the engine then had no memory.
  engine().once("QUIVO_AllocMem").result = 1;
  EXPECT_HR(kNoMemory, object->AddRecipDERCert(Bstr(L"der")));
  desktop.duringSheet = [&] { EXPECT_OK(object->AddRecipDERCert(Bstr(L"der"))); };
  EXPECT_OK(signAndEncrypt(object));
  EXPECT_EQ(2, encryption(engine().only("QUIVO_SignAndEncryptFile")).i32(16));
  EXPECT_EQ(3u, recipients());
}

TEST_F(LegacyNestedRecipients, FoundForAClosedSessionAreGivenBack) {
  for (const wchar_t* addresses : {L"", L"SMTP:a@b", L"X400:a", L"SMTP:a;SMTP:b"}) {
    for (const auto& change : {std::function<void()>([&] { EXPECT_OK(object->Uninit()); }), {[&] { reopen(); }}}) {
      begin();
      fake::Reply& found = engine().once("QUIVO_FindCert");
      found.certificates = {CertificateOf("CN=A"), CertificateOf("CN=B")};
      found.during = change;
      EXPECT_HR(S_FALSE, object->SetRecipients(Bstr(addresses)));
      EXPECT_EQ(1u, engine().count("QUIVO_FindCert"));
      EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
      EXPECT_EQ(0u, recipients());
    }
  }
}

TEST_F(LegacyNestedRecipients, TheSearchOfAReplacedSessionKeepsTheCodeOfItsFailure) {
  fake::Reply& cancelled = engine().once("QUIVO_FindCert");
  cancelled.result = static_cast<int32_t>(0xE072008A);
  cancelled.during = [&] { reopen(); };
  EXPECT_HR(0xE072008Au, object->SetRecipients(Bstr(L"SMTP:a;SMTP:b")));
  EXPECT_EQ(1u, engine().count("QUIVO_FindCert"));
}

TEST_F(LegacyNestedRecipients, AddedToAClosedSessionIsGivenBack) {
  for (const char* function : {"QUIVO_VerifyCert", "QUIVO_AllocMem"}) {
    begin();
    engine().on(function).during = [&] { reopen(); };
    EXPECT_HR(S_FALSE, object->AddRecipDERCert(Bstr(L"der")));
    EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
    EXPECT_EQ(0u, recipients());
  }
}

TEST_F(LegacyNestedRecipients, AddedInsideAnAdditionAreBothKept) {
  engine().once("QUIVO_AllocMem").during = [&] { EXPECT_OK(object->AddRecipDERCert(Bstr(L"first"))); };
  EXPECT_OK(object->AddRecipDERCert(Bstr(L"second")));
  EXPECT_EQ(4u, recipients());
  const fake::Snapshot records = encryption(engine().only("QUIVO_EncryptFile")).at(24);
  EXPECT_EQ(2u * 5, CertificateAt(records, 2).blob(376).size());
  EXPECT_EQ(2u * 6, CertificateAt(records, 3).blob(376).size());
}

TEST_F(LegacyNestedRecipients, AListBegunWithoutASessionBelongsToTheFirstThatAddsToIt) {
  object->Uninit();
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a@b")));
  engine().once("QUIVO_Initialize").handle = kFirst;
  EXPECT_OK(object->Init(Bstr(L"My")));
  EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
  EXPECT_EQ(3u, recipients());
  engine().forgetCalls();
  EXPECT_OK(object->FreeRecipCerts());
  ASSERT_EQ(3u, engine().calls().size());
  for (const fake::Call& call : engine().calls()) EXPECT_EQ(0x7000u, call.value(0));
  // The fake engine hands records out without a session, and objects to their way back.
  engine().reset();
  object.reset();
}

TEST_F(LegacyNestedRecipients, AListThatIsGivenBackTakesNoOthers) {
  engine().once("QUIVO_FreeCert").during = [&] {
    EXPECT_OK(object->FreeRecipCerts());
    EXPECT_HR(S_FALSE, object->SetRecipients(Bstr(L"EX:b")));
    EXPECT_HR(S_FALSE, object->AddRecipDERCert(Bstr(L"der")));
  };
  EXPECT_OK(object->Uninit());
  EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
  EXPECT_EQ("QUIVO_Uninitialize", engine().names().back());
}

}  // namespace
