// String properties: kept in the engine's form, converted when they are assigned.
#include "contract/properties/properties.h"
#include "support/malloc_spy.h"

namespace {

class StringPropertyTest : public ContractTest, public ::testing::WithParamInterface<Property> {
 protected:
  HRESULT get(Bstr& value) { return GetParam().get(object, value.inOut()); }
  HRESULT put(const Bstr& value) { return GetParam().put(object, value); }
  std::wstring text() {
    Bstr value(L"before");
    EXPECT_OK(get(value));
    EXPECT_FALSE(value.null());
    return value.text();
  }
  fake::Snapshot record() { return RecordOf(object); }

  Ptr<IDispatch> object = GetParam().make();
};

TEST_P(StringPropertyTest, NewObjectHasAnEmptyText) {
  EXPECT_EQ(L"", text());
  EXPECT_EQ(0u, record().pointer(GetParam().offset));
}

TEST_P(StringPropertyTest, NullStringIsFilledToo) {
  Bstr value;
  EXPECT_OK(get(value));
  EXPECT_FALSE(value.null());
}

TEST_P(StringPropertyTest, TextIsKept) {
  EXPECT_OK(put(L"CN=Иванов, O=Банк"));
  EXPECT_EQ(L"CN=Иванов, O=Банк", text());
}

TEST_P(StringPropertyTest, EngineReadsTheAnsiText) {
  EXPECT_OK(put(L"a\x0431"));
  EXPECT_EQ("a\xE1", record().text(GetParam().offset));
}

TEST_P(StringPropertyTest, OtherFieldsOfTheRecordStay) {
  fake::Snapshot before = record();
  EXPECT_OK(put(L"text"));
  fake::Snapshot after = record();
  for (size_t i = 0; i < 8; ++i) before.bytes[GetParam().offset + i] = after.bytes[GetParam().offset + i] = 0;
  EXPECT_EQ(before.bytes, after.bytes);
}

TEST_P(StringPropertyTest, LaterTextReplacesTheEarlier) {
  EXPECT_OK(put(L"first"));
  EXPECT_OK(put(L"second"));
  EXPECT_EQ(L"second", text());
}

TEST_P(StringPropertyTest, NullStringIsRefusedAndTheValueKept) {
  EXPECT_OK(put(L"kept"));
  EXPECT_HR(kUnmappedInvalidParameter, put(Bstr()));
  EXPECT_EQ(L"kept", text());
}

TEST_P(StringPropertyTest, EmptyStringIsAValue) {
  EXPECT_OK(put(L"before"));
  EXPECT_OK(put(L""));
  EXPECT_EQ(L"", text());
  EXPECT_EQ("", record().text(GetParam().offset));
}

TEST_P(StringPropertyTest, CharactersOutsideTheCodePageAreReplaced) {
  EXPECT_OK(put(L"\x4E2D"));
  EXPECT_EQ(L"?", text());
}

TEST_P(StringPropertyTest, TextEndsAtItsFirstNul) {
  EXPECT_OK(put(std::wstring(L"one\0two", 7)));
  EXPECT_EQ(L"one", text());
}

TEST_P(StringPropertyTest, LongTextIsKept) {
  const std::wstring longText(5000, L'\x0436');
  EXPECT_OK(put(longText));
  EXPECT_EQ(longText, text());
}

TEST_P(StringPropertyTest, TextThatCannotBeAllocatedLeavesNone) {
  EXPECT_OK(put(L"before"));
  Bstr value(L"after");
  Module::get().failAllocation(0);
  EXPECT_HR(0x8007000Eu, put(value));
  EXPECT_EQ(L"", text());
}

TEST_P(StringPropertyTest, ReadingThatCannotAllocateLeavesTheString) {
  EXPECT_OK(put(L"value"));
  Bstr value(L"before");
  Module::get().failAllocation(0);
  EXPECT_HR(0x8007000Eu, get(value));
  EXPECT_EQ(L"before", value.text());
}

TEST_P(StringPropertyTest, StringThatCannotBeMadeIsReported) {
  for (const wchar_t* text : {static_cast<const wchar_t*>(nullptr), L"value", L""}) {
    if (text != nullptr) {
      EXPECT_OK(put(text));
    }
    Bstr value;
    MallocSpy::get().failAllocation(0);
    const HRESULT result = get(value);
    MallocSpy::get().failAllocation(-1);
    EXPECT_HR(0x8007000Eu, result);
    EXPECT_TRUE(value.null());
  }
}

TEST_P(StringPropertyTest, NullPointerForTheValueIsRefused) {
  EXPECT_HR(E_POINTER, GetParam().get(object, nullptr));
  EXPECT_OK(put(L"value"));
  EXPECT_HR(E_POINTER, GetParam().get(object, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Properties, StringPropertyTest, ::testing::ValuesIn(TextProperties()), NameOfProperty);

}  // namespace
