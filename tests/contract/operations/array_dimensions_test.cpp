// Arrays of two dimensions, of different sizes: the first bound record gives the number of elements, and a dimension
// without elements none.
#include "contract/operations/calls.h"
#include "contract/properties/properties.h"

namespace {

/// Two rows of three elements, in the order in which they lie in memory. The first bound record is that of the three.
template <class Element>
Variant grid(VARTYPE type, const std::vector<Element>& elements) {
  Variant made = manyDimensions(type, {{2, 0}, {3, 0}});
  EXPECT_EQ(3u, made.safeArray()->rgsabound[0].cElements);
  std::copy(elements.begin(), elements.end(), static_cast<Element*>(made.safeArray()->pvData));
  return made;
}

Variant byteGrid() { return grid<uint8_t>(VT_UI1, {1, 2, 3, 4, 5, 6}); }

Variant vbsGrid() {
  std::vector<VARIANT> elements(6);
  for (uint8_t i = 0; i < 6; ++i) {
    V_VT(&elements[i]) = VT_UI1;
    V_UI1(&elements[i]) = static_cast<uint8_t>(i + 1);
  }
  return grid(VT_VARIANT, elements);
}

Variant stringGrid() {
  std::vector<BSTR> elements;
  for (const wchar_t* text : {L"1", L"2", L"3", L"4", L"5", L"6"}) elements.push_back(SysAllocString(text));
  return grid(VT_BSTR, elements);
}

/// Takes a reference for each of six elements.
template <class Element>
Variant objectGrid(VARTYPE type, IDispatch* object, Element element) {
  for (int i = 0; i < 6; ++i) object->AddRef();
  return grid(type, std::vector<Element>(6, element));
}

std::vector<Variant> emptyGrids(VARTYPE type) {
  std::vector<Variant> grids;
  grids.push_back(manyDimensions(type, {{0, 0}, {3, 0}}));
  grids.push_back(manyDimensions(type, {{3, 0}, {0, 0}}));
  grids.push_back(manyDimensions(type, {{2, 0}, {0, 0}, {3, 0}}));
  return grids;
}

class ByteInputDimensionsTest : public ContractTest, public ::testing::WithParamInterface<ByteInput> {
 protected:
  /// What reaches the engine, from a context without a form.
  Bytes passed(const Variant& array) {
    engine().forgetCalls();
    EXPECT_OK(GetParam().call(Objects(openQuivo()), array));
    const fake::Call& call = engine().only(GetParam().function);
    return call.blobLength(GetParam().argument) == 0 ? Bytes{} : call.blobBytes(GetParam().argument);
  }
};

TEST_P(ByteInputDimensionsTest, FirstBoundRecordGivesTheLength) {
  EXPECT_EQ((Bytes{1, 2, 3}), passed(byteGrid()));
  EXPECT_EQ((Bytes{1, 2, 3}), passed(vbsGrid()));
}

TEST_P(ByteInputDimensionsTest, DimensionWithoutElementsGivesLengthZero) {
  for (VARTYPE type : {VT_UI1, VT_VARIANT})
    for (const Variant& empty : emptyGrids(type)) EXPECT_EQ(Bytes{}, passed(empty));
}

INSTANTIATE_TEST_SUITE_P(Arguments, ByteInputDimensionsTest, ::testing::ValuesIn(kByteInputs), nameOfRow<ByteInput>);

class PropertyDimensionsTest : public ContractTest, public ::testing::WithParamInterface<VariantProperty> {
 protected:
  void put(const VARIANT& value) { EXPECT_OK(GetParam().put(object, value)); }
  Variant get() {
    Variant value;
    EXPECT_OK(GetParam().get(object, value.out()));
    return value;
  }
  int32_t recordCount() { return GetParam().record(object).i32(GetParam().countOffset); }

  Ptr<IDispatch> object = GetParam().make();
};

class BytePropertyDimensionsTest : public PropertyDimensionsTest {};

TEST_P(BytePropertyDimensionsTest, FirstBoundRecordGivesTheLength) {
  put(byteGrid());
  EXPECT_EQ((Bytes{1, 2, 3}), plainBytesOf(get()));
}

TEST_P(BytePropertyDimensionsTest, DimensionWithoutElementsGivesNoBytes) {
  for (const Variant& empty : emptyGrids(VT_UI1)) {
    put(byteGrid());
    put(empty);
    EXPECT_EQ(VT_EMPTY, get().type());
    EXPECT_EQ(0, recordCount());
  }
}

INSTANTIATE_TEST_SUITE_P(Properties, BytePropertyDimensionsTest, ::testing::ValuesIn(byteProperties()),
                         nameOfProperty<VariantProperty>);

class StringPropertyDimensionsTest : public PropertyDimensionsTest {};

TEST_P(StringPropertyDimensionsTest, FirstBoundRecordGivesTheCount) {
  put(stringGrid());
  EXPECT_EQ((std::vector<std::wstring>{L"1", L"2", L"3"}), stringsOf(get()));
}

TEST_P(StringPropertyDimensionsTest, DimensionWithoutElementsGivesNoStrings) {
  for (const Variant& empty : emptyGrids(VT_BSTR)) {
    put(stringGrid());
    put(empty);
    EXPECT_EQ(0u, stringsOf(get()).size());
    EXPECT_EQ(0, recordCount());
  }
}

INSTANTIATE_TEST_SUITE_P(Properties, StringPropertyDimensionsTest, ::testing::ValuesIn(stringArrayProperties()),
                         nameOfProperty<VariantProperty>);

struct ObjectProperty {
  const char* name;
  Ptr<IDispatch> (*make)();
  HRESULT (*put)(IDispatch*, VARIANT);
  int32_t (*count)(IDispatch*);
  Ptr<IDispatch> (*element)();
  /// VT_DISPATCH, or VT_VARIANT for a script's array.
  VARTYPE type;
};

void PrintTo(const ObjectProperty& row, std::ostream* out) { *out << row.name; }

template <class Class, class Element, auto Put, size_t CountOffset>
ObjectProperty property(const char* name, VARTYPE type = VT_DISPATCH) {
  using Interface = typename InterfaceOf<Class>::type;
  return {name,
          [] { return make<Class>().template as<IDispatch>(); },
          [](IDispatch* object, VARIANT value) { return (static_cast<Interface*>(object)->*Put)(value); },
          [](IDispatch* object) { return recordOf(static_cast<Interface*>(object)).i32(CountOffset); },
          [] { return make<Element>().template as<IDispatch>(); },
          type};
}

class ObjectPropertyDimensionsTest : public ContractTest, public ::testing::WithParamInterface<ObjectProperty> {
 protected:
  Variant elementGrid() {
    if (GetParam().type == VT_DISPATCH) return objectGrid(VT_DISPATCH, element, element.get());
    VARIANT holder{};
    V_VT(&holder) = VT_DISPATCH;
    V_DISPATCH(&holder) = element;
    return objectGrid(VT_VARIANT, element, holder);
  }

  Ptr<IDispatch> object = GetParam().make(), element = GetParam().element();
};

TEST_P(ObjectPropertyDimensionsTest, FirstBoundRecordGivesTheCount) {
  EXPECT_OK(GetParam().put(object, elementGrid()));
  EXPECT_EQ(3, GetParam().count(object));
  EXPECT_EQ(1u + 3u, element.references());
}

TEST_P(ObjectPropertyDimensionsTest, DimensionWithoutElementsGivesNoObjects) {
  for (const Variant& empty : emptyGrids(GetParam().type)) {
    EXPECT_OK(GetParam().put(object, elementGrid()));
    EXPECT_OK(GetParam().put(object, empty));
    EXPECT_EQ(0, GetParam().count(object));
    EXPECT_EQ(1u, element.references());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Properties, ObjectPropertyDimensionsTest,
    ::testing::Values(property<VerifyParam, Policy, &IVerifyParam::put_policies, 20>("VerifyParam_policies"),
                      property<VerifyParam, Extension, &IVerifyParam::put_extensions, 48>("VerifyParam_extensions"),
                      property<Certificate, Policy, &ICertificate::put_policies, 328>("Certificate_policies"),
                      property<Certificate, Extension, &ICertificate::put_extensions, 360>("Certificate_extensions"),
                      property<EncryptParam, Certificate, &IEncryptParam::put_Receivers, 16>("EncryptParam_Receivers"),
                      property<EncryptParam, Certificate, &IEncryptParam::put_Receivers, 16>(
                          "EncryptParam_scriptReceivers", VT_VARIANT)),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
