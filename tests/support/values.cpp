// Arrays are built and read element by element through the platform's functions.
#include "support/values.h"

#include <gtest/gtest.h>

namespace {

SAFEARRAY* Vector(VARTYPE element, size_t count, LONG lowerBound) {
  return SafeArrayCreateVector(element, lowerBound, static_cast<ULONG>(count));
}

template <class T>
T* DataOf(SAFEARRAY* array) {
  return static_cast<T*>(array->pvData);
}

/// The array of a VARIANT that has to be one-dimensional, from 0, of `type`; null otherwise.
SAFEARRAY* ExpectVector(const Variant& value, VARTYPE type) {
  EXPECT_EQ(type, value.type()) << "the type of the array";
  if (value.type() != type) return nullptr;
  SAFEARRAY* array = value.safeArray();
  EXPECT_EQ(1u, SafeArrayGetDim(array));
  EXPECT_EQ(0, array->rgsabound[0].lLbound);
  EXPECT_EQ(0u, array->cLocks) << "the array is still locked";
  return array;
}

size_t CountOf(SAFEARRAY* array) { return array == nullptr ? 0 : array->rgsabound[0].cElements; }

}  // namespace

Variant Variant::number(LONG value) {
  Variant made;
  V_VT(made.out()) = VT_I4;
  V_I4(made.out()) = value;
  return made;
}

Variant Variant::text(const wchar_t* value) {
  Variant made;
  V_VT(made.out()) = VT_BSTR;
  V_BSTR(made.out()) = SysAllocString(value);
  return made;
}

Variant Variant::object(IDispatch* object) {
  Variant made;
  V_VT(made.out()) = VT_DISPATCH;
  V_DISPATCH(made.out()) = object;
  if (object != nullptr) object->AddRef();
  return made;
}

Variant Variant::null() {
  Variant made;
  V_VT(made.out()) = VT_NULL;
  return made;
}

Variant Variant::array(VARTYPE element, SAFEARRAY* array) {
  Variant made;
  V_VT(made.out()) = VT_ARRAY | element;
  V_ARRAY(made.out()) = array;
  return made;
}

Variant ByteArray(const Bytes& content, LONG lowerBound) {
  SAFEARRAY* array = Vector(VT_UI1, content.size(), lowerBound);
  std::copy(content.begin(), content.end(), DataOf<uint8_t>(array));
  return Variant::array(VT_UI1, array);
}

Variant VbsByteArray(const Bytes& content, LONG lowerBound) {
  SAFEARRAY* array = Vector(VT_VARIANT, content.size(), lowerBound);
  for (size_t i = 0; i < content.size(); ++i) {
    VARIANT& element = DataOf<VARIANT>(array)[i];
    V_VT(&element) = VT_UI1;
    V_UI1(&element) = content[i];
  }
  return Variant::array(VT_VARIANT, array);
}

Variant VariantArray(std::initializer_list<VARIANT> elements, LONG lowerBound) {
  SAFEARRAY* array = Vector(VT_VARIANT, elements.size(), lowerBound);
  VARIANT* slot = DataOf<VARIANT>(array);
  for (const VARIANT& element : elements) VariantCopy(slot++, const_cast<VARIANT*>(&element));
  return Variant::array(VT_VARIANT, array);
}

Variant ObjectArray(std::initializer_list<IDispatch*> elements, LONG lowerBound) {
  SAFEARRAY* array = Vector(VT_DISPATCH, elements.size(), lowerBound);
  IDispatch** slot = DataOf<IDispatch*>(array);
  for (IDispatch* element : elements) {
    if (element != nullptr) element->AddRef();
    *slot++ = element;
  }
  return Variant::array(VT_DISPATCH, array);
}

Variant StringArray(std::initializer_list<const wchar_t*> elements, LONG lowerBound) {
  SAFEARRAY* array = Vector(VT_BSTR, elements.size(), lowerBound);
  BSTR* slot = DataOf<BSTR>(array);
  for (const wchar_t* element : elements) *slot++ = element == nullptr ? nullptr : SysAllocString(element);
  return Variant::array(VT_BSTR, array);
}

Variant ByRef(Variant& value) {
  Variant made;
  V_VT(made.out()) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(made.out()) = value.out();
  return made;
}

Variant ByRefArray(Variant& value) {
  Variant made;
  V_VT(made.out()) = VT_BYREF | value.type();
  V_ARRAYREF(made.out()) = &V_ARRAY(value.out());
  return made;
}

Variant NullRef(VARTYPE type) {
  Variant made;
  V_VT(made.out()) = VT_BYREF | type;
  V_BYREF(made.out()) = nullptr;
  return made;
}

Variant ManyDimensions(VARTYPE element, std::initializer_list<SAFEARRAYBOUND> bounds) {
  std::vector<SAFEARRAYBOUND> copy(bounds);
  return Variant::array(element, SafeArrayCreate(element, static_cast<UINT>(copy.size()), copy.data()));
}

Bytes PlainBytesOf(const Variant& value) {
  SAFEARRAY* array = ExpectVector(value, kByteArray);
  return array == nullptr ? Bytes{} : Bytes(DataOf<uint8_t>(array), DataOf<uint8_t>(array) + CountOf(array));
}

Bytes VbsBytesOf(const Variant& value) {
  SAFEARRAY* array = ExpectVector(value, kVbsArray);
  Bytes content;
  for (size_t i = 0; i < CountOf(array); ++i) {
    const VARIANT& element = DataOf<VARIANT>(array)[i];
    EXPECT_EQ(VT_UI1, V_VT(&element)) << "element " << i;
    content.push_back(V_UI1(&element));
  }
  return content;
}

std::vector<std::wstring> StringsOf(const Variant& value) {
  SAFEARRAY* array = ExpectVector(value, kStringArray);
  std::vector<std::wstring> texts;
  for (size_t i = 0; i < CountOf(array); ++i) {
    const BSTR text = DataOf<BSTR>(array)[i];
    EXPECT_NE(nullptr, text) << "a null string at " << i;
    texts.emplace_back(text == nullptr ? L"" : text, SysStringLen(text));
  }
  return texts;
}

std::vector<Ptr<IDispatch>> ObjectsOf(const Variant& value) {
  SAFEARRAY* array = ExpectVector(value, kObjectArray);
  std::vector<Ptr<IDispatch>> found;
  for (size_t i = 0; i < CountOf(array); ++i) found.push_back(Ptr<IDispatch>::share(DataOf<IDispatch*>(array)[i]));
  return found;
}

std::wstring TextOf(const Variant& value) {
  EXPECT_EQ(VT_BSTR, value.type());
  if (value.type() != VT_BSTR) return {};
  EXPECT_NE(nullptr, V_BSTR(&value.get()));
  return V_BSTR(&value.get()) == nullptr ? L"" : V_BSTR(&value.get());
}

std::string AnsiOf(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string ansi(2 * text.size(), '\0');
  const int written =
      WideCharToMultiByte(CP_ACP, 0, text.data(), length, ansi.data(), static_cast<int>(ansi.size()), nullptr, nullptr);
  ansi.resize(static_cast<size_t>(written));
  return ansi;
}

std::wstring WideOf(const std::string& text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length)));
  return wide;
}

LockedVariant::LockedVariant() : array_(ByteArray({1})) {
  EXPECT_EQ(S_OK, SafeArrayLock(array_.safeArray()));
  value = array_.get();
}

LockedVariant::~LockedVariant() {
  EXPECT_EQ(S_OK, SafeArrayUnlock(array_.safeArray()));
  if (V_ARRAY(&value) != array_.safeArray()) VariantClear(&value);
}
