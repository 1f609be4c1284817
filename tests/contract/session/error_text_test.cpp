// The texts of result codes.
#include "support/contract_test.h"

namespace {

class ErrorTextTest : public ContractTest {
 protected:
  std::wstring textFor(uint32_t code) {
    Bstr text;
    EXPECT_OK(Make<IQUIVO>()->GetPKIErrorText(static_cast<long>(code), text.inOut()));
    return text.text();
  }
  fake::Reply& reply() { return engine().on("QUIVO_GetErrorText"); }
  const fake::Call& call() { return engine().only("QUIVO_GetErrorText"); }
};

TEST_F(ErrorTextTest, ModuleCodesHaveTheirOwnTexts) {
  EXPECT_EQ(L"Объект уже инициализирован", textFor(0xE0680001));
  EXPECT_EQ(L"Неизвестное исключение библиотеки QUIVO", textFor(0xE0680002));
  EXPECT_EQ(0u, engine().count("QUIVO_GetErrorText"));
}

TEST_F(ErrorTextTest, OtherModuleCodesShareOneText) {
  for (uint32_t code : {0xE0680000u, 0xE0680003u, 0xE0680007u, 0xE068FFFFu}) {
    EXPECT_EQ(L"Неизвестная дополнительная ошибка", textFor(code));
  }
  EXPECT_EQ(0u, engine().count("QUIVO_GetErrorText"));
}

TEST_F(ErrorTextTest, RebasedCodeIsAskedByItsLowBits) {
  reply().text = "text of the engine";
  EXPECT_EQ(L"text of the engine", textFor(0xE0690005));
  EXPECT_EQ(5, call().number(0));
}

TEST_F(ErrorTextTest, EngineCodeIsAskedAsItIs) {
  textFor(5);
  EXPECT_EQ(5, call().number(0));
}

TEST_F(ErrorTextTest, CodesThatWereNeverTheEnginesAreAskedToo) {
  for (uint32_t code : {0x80004005u, 0xE0700019u, 0x80070002u, 0x00690005u}) {
    engine().forgetCalls();
    textFor(code);
    EXPECT_EQ(static_cast<int32_t>(code), call().number(0));
  }
}

TEST_F(ErrorTextTest, EngineGetsABufferOf512Bytes) {
  textFor(5);
  EXPECT_FALSE(call().null(1));
  EXPECT_EQ(512, call().number(2));
}

TEST_F(ErrorTextTest, LongTextsFitIntoTheBuffer) {
  reply().text = std::string(511, 'x');
  EXPECT_EQ(std::wstring(511, L'x'), textFor(5));
}

TEST_F(ErrorTextTest, EngineTextIsInTheAnsiCodePage) {
  reply().text = "\xCD\xE5\xF2";
  EXPECT_EQ(L"Нет", textFor(5));
}

TEST_F(ErrorTextTest, ResultOfTheEngineIsNotConsulted) {
  reply().text = "text";
  reply().result = 7;
  EXPECT_EQ(L"text", textFor(5));
}

TEST_F(ErrorTextTest, CodeWithoutATextGivesAnEmptyOne) { EXPECT_EQ(L"", textFor(5)); }

TEST_F(ErrorTextTest, FormerTextIsReplaced) {
  Bstr text(L"before");
  EXPECT_OK(Make<IQUIVO>()->GetPKIErrorText(static_cast<long>(0xE0680001), text.inOut()));
  EXPECT_EQ(L"Объект уже инициализирован", text.text());
}

TEST_F(ErrorTextTest, NullPointerIsRefusedWithoutTheEngine) {
  EXPECT_HR(kInvalidArgument, Make<IQUIVO>()->GetPKIErrorText(5, nullptr));
  EXPECT_EQ(0u, engine().count("QUIVO_GetErrorText"));
}

TEST_F(ErrorTextTest, WideBufferThatCannotBeAllocatedIsReported) {
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  Bstr text(L"before");
  reply().during = [] { Module::get().failAllocation(0); };
  EXPECT_HR(kOutOfMemory, quivo->GetPKIErrorText(5, text.inOut()));
  EXPECT_EQ(L"before", text.text());
}

TEST_F(ErrorTextTest, ScriptsGetTheTextInAVariant) {
  Variant text;
  EXPECT_OK(Make<IQUIVO>()->GetPKIErrorTextVBS(static_cast<long>(0xE0680001), text.out()));
  EXPECT_EQ(L"Объект уже инициализирован", TextOf(text));
}

TEST_F(ErrorTextTest, ScriptsAskTheEngineInTheSameWay) {
  Variant text;
  reply().text = "text";
  EXPECT_OK(Make<IQUIVO>()->GetPKIErrorTextVBS(static_cast<long>(0xE0690005), text.out()));
  EXPECT_EQ(L"text", TextOf(text));
  EXPECT_EQ(5, call().number(0));
}

TEST_F(ErrorTextTest, VariantIsOverwrittenWithoutBeingCleared) {
  Bstr kept(L"kept");
  VARIANT text;
  V_VT(&text) = VT_BSTR;
  V_BSTR(&text) = kept;
  EXPECT_OK(Make<IQUIVO>()->GetPKIErrorTextVBS(static_cast<long>(0xE0680001), &text));
  EXPECT_EQ(L"kept", kept.text());
  VariantClear(&text);
}

TEST_F(ErrorTextTest, NullVariantIsRefusedAfterTheLookUp) {
  EXPECT_HR(kInvalidArgument, Make<IQUIVO>()->GetPKIErrorTextVBS(5, nullptr));
  EXPECT_EQ(1u, engine().count("QUIVO_GetErrorText"));
}

TEST_F(ErrorTextTest, FailedLookUpLeavesTheVariantAlone) {
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  Variant text = Variant::number(77);
  reply().during = [] { Module::get().failAllocation(0); };
  EXPECT_HR(kOutOfMemory, quivo->GetPKIErrorTextVBS(5, text.out()));
  EXPECT_EQ(VT_I4, text.type());
}

TEST_F(ErrorTextTest, NoErrorInformationIsSet) {
  SetErrorInfo(0, nullptr);
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  Variant hash;
  EXPECT_HR(kInvalidArgument, quivo->HashMem(Variant::text(L"text"), hash.out()));
  Ptr<IErrorInfo> information;
  EXPECT_HR(S_FALSE, GetErrorInfo(0, information.out()));
}

}  // namespace
