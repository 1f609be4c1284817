#include "contract/properties/arrays.h"

namespace {

bool HoldsBytes(const Property& property) { return property.content == "bytes"; }
bool HoldsStrings(const Property& property) { return property.content == "strings"; }

}  // namespace

VARTYPE ArrayTest::elementType() const {
  return HoldsBytes(GetParam()) ? VT_UI1 : HoldsStrings(GetParam()) ? VT_BSTR : VT_DISPATCH;
}

void ArrayTest::fill(SAFEARRAY* array, size_t index, int number) {
  const std::wstring text = std::to_wstring(number);
  if (HoldsBytes(GetParam())) {
    static_cast<uint8_t*>(array->pvData)[index] = static_cast<uint8_t>(number);
  } else if (HoldsStrings(GetParam())) {
    static_cast<BSTR*>(array->pvData)[index] = SysAllocString(text.c_str());
  } else {
    Ptr<IDispatch> element = Marked(GetParam().content, text.c_str());
    element->AddRef();
    static_cast<IDispatch**>(array->pvData)[index] = element;
  }
}

Variant ArrayTest::given(std::initializer_list<int> numbers, LONG lowerBound) {
  SAFEARRAY* array = SafeArrayCreateVector(elementType(), lowerBound, static_cast<ULONG>(numbers.size()));
  size_t index = 0;
  for (int number : numbers) fill(array, index++, number);
  return Variant::array(elementType(), array);
}

Variant ArrayTest::grid() {
  Variant made = ManyDimensions(elementType(), {{2, 0}, {3, 0}});
  EXPECT_EQ(3u, made.safeArray()->rgsabound[0].cElements);
  for (int i = 0; i < 6; ++i) fill(made.safeArray(), static_cast<size_t>(i), i + 1);
  return made;
}

Content ArrayTest::contentOf(std::initializer_list<int> numbers) const {
  const std::string none = HoldsBytes(GetParam()) ? "0" : "";
  Content content;
  for (int number : numbers) content.push_back(number == kNoElement ? none : std::to_string(number));
  return content;
}

Content ArrayTest::kept() {
  Variant value = Variant::text(L"before");
  EXPECT_OK(tryGet(value));
  Content content;
  if (HoldsBytes(GetParam())) {
    // Without bytes there is no array.
    if (value.type() == VT_EMPTY) return content;
    for (uint8_t byte : PlainBytesOf(value)) content.push_back(std::to_string(byte));
  } else if (HoldsStrings(GetParam())) {
    for (const std::wstring& text : StringsOf(value)) content.push_back(AnsiOf(text));
  } else {
    for (const Ptr<IDispatch>& element : ObjectsOf(value)) {
      content.push_back(element.get() == nullptr ? "" : MarkIn(GetParam().content, RecordOf(element)));
    }
  }
  return content;
}

Content ArrayTest::recorded() {
  const fake::Snapshot owner = record();
  Content content;
  for (size_t i = 0; i < static_cast<size_t>(owner.i32(GetParam().offset)); ++i) {
    const fake::Snapshot& elements = owner.at(GetParam().pointerOffset());
    if (HoldsBytes(GetParam())) {
      content.push_back(std::to_string(elements.bytes.at(i)));
    } else if (HoldsStrings(GetParam())) {
      content.push_back(elements.text(8 * i));
    } else {
      const bool areCertificates = GetParam().content == "ICertificate";
      content.push_back(
          MarkIn(GetParam().content, areCertificates ? CertificateAt(elements, i) : elements.element(i, 32)));
    }
  }
  return content;
}
