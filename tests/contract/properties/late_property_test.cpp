// Every property through IDispatch.
#include "contract/properties/properties.h"
#include "support/invoke.h"
#include "support/operations.h"

namespace {

/// The type and the content.
std::string Shown(const Variant& value) {
  std::string shown = std::to_string(value.type()) + ":";
  const VARIANT& raw = value.get();
  switch (value.type()) {
    case VT_BSTR:
      return shown + AnsiOf(TextOf(value));
    case VT_I4:
      return shown + std::to_string(V_I4(&raw));
    case VT_DATE:
      return shown + std::to_string(V_DATE(&raw));
    case VT_DISPATCH:
      return shown + std::to_string(reinterpret_cast<uintptr_t>(V_DISPATCH(&raw)));
    case kByteArray:
      for (uint8_t byte : PlainBytesOf(value)) shown += " " + std::to_string(byte);
      return shown;
    case kStringArray:
      for (const std::wstring& text : StringsOf(value)) shown += " " + AnsiOf(text);
      return shown;
    case kObjectArray:
      for (IDispatch* object : ObjectsOf(value)) shown += " " + std::to_string(reinterpret_cast<uintptr_t>(object));
      return shown;
    default:
      return shown + "?";
  }
}

class LatePropertyTest : public ContractTest, public ::testing::WithParamInterface<Property> {
 protected:
  LateResult read() { return GetProperty(object, name.c_str()); }
  HRESULT write(const VARIANT& value) {
    const bool byReference = GetParam().setter.kind == INVOKE_PROPERTYPUTREF;
    return (byReference ? PutRefProperty : PutProperty)(object, name.c_str(), value).result;
  }

  const std::wstring name = Widen(GetParam().getter.name);
  Ptr<IDispatch> object = GetParam().make();
  Variant value = GetParam().sample();
};

TEST_P(LatePropertyTest, WrittenValueIsRead) {
  EXPECT_OK(write(value));
  const LateResult outcome = read();
  EXPECT_OK(outcome.result);
  EXPECT_EQ(Shown(value), Shown(outcome.value));
}

TEST_P(LatePropertyTest, VariableIsRead) {
  EXPECT_OK(write(ByRef(value)));
  EXPECT_EQ(Shown(value), Shown(read().value));
}

TEST_P(LatePropertyTest, ValueFromTheSlotIsRead) {
  EXPECT_OK(GetParam().put(object, SlotOf(value)));
  EXPECT_EQ(Shown(value), Shown(read().value));
}

INSTANTIATE_TEST_SUITE_P(Properties, LatePropertyTest,
                         // The time of a signature cannot be changed.
                         ::testing::ValuesIn(Where(AllProperties(),
                                                   [](const Property& row) { return row.name != "SignStatus_time"; })),
                         NameOfProperty);

}  // namespace
