// Properties that are objects: identifiers, alternative names, templates and certificates.
#include "contract/properties/properties.h"
#include "support/foreign_object.h"
#include "support/operations.h"

namespace {

class ObjectPropertyTest : public ContractTest, public ::testing::WithParamInterface<Property> {
 protected:
  Ptr<IDispatch> held(const wchar_t* mark) { return Marked(GetParam().interfaceName(), mark); }
  HRESULT put(const void* value) { return GetParam().put(object, value); }
  Ptr<IDispatch> get() {
    Ptr<IDispatch> value;
    EXPECT_OK(GetParam().get(object, value.out()));
    return value;
  }

  Ptr<IDispatch> object = GetParam().make();
};

TEST_P(ObjectPropertyTest, NewObjectHasNone) { EXPECT_EQ(nullptr, get().get()); }

TEST_P(ObjectPropertyTest, AssignedObjectIsTheOneThatIsRead) {
  Ptr<IDispatch> first = held(L"1"), second = held(L"2");
  for (const Ptr<IDispatch>& value : {first, second, second}) {
    EXPECT_OK(put(value));
    EXPECT_EQ(value.get(), get().get());
  }
}

TEST_P(ObjectPropertyTest, ReferencesAreHeldAndGivenBack) {
  Ptr<IDispatch> first = held(L"1"), second = held(L"2");
  EXPECT_OK(put(first));
  const ULONG count = first.references();
  EXPECT_GT(count, 1u);
  get();
  EXPECT_EQ(count, first.references());
  EXPECT_OK(put(first));
  EXPECT_EQ(count, first.references());
  EXPECT_OK(put(second));
  EXPECT_EQ(1u, first.references());
  object.reset();
  EXPECT_EQ(1u, second.references());
}

TEST_P(ObjectPropertyTest, NothingReadsAsNothingUntilTheNextAssignment) {
  Ptr<IDispatch> later = held(L"later");
  EXPECT_OK(put(held(L"earlier")));
  EXPECT_OK(put(nullptr));
  EXPECT_EQ(nullptr, get().get());
  EXPECT_OK(put(later));
  EXPECT_EQ(later.get(), get().get());
}

TEST_P(ObjectPropertyTest, ForeignObjectIsRefusedUntouched) {
  Ptr<IDispatch> kept = held(L"kept");
  EXPECT_OK(put(kept));
  ForeignObject foreign;
  EXPECT_HR(E_INVALIDARG, put(foreign.as<void>()));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
  EXPECT_EQ(kept.get(), get().get());
}

TEST_P(ObjectPropertyTest, ObjectOfAnotherClassIsRefused) {
  for (const CoClass& coclass : Classes()) {
    if (coclass.interfaceName == GetParam().interfaceName()) continue;
    Ptr<IUnknown> wrong = MakeUnknown(coclass.clsid, coclass.iid);
    EXPECT_HR(E_INVALIDARG, put(wrong.get())) << coclass;
    EXPECT_EQ(1u, wrong.references()) << coclass;
  }
  EXPECT_EQ(nullptr, get().get());
}

TEST_P(ObjectPropertyTest, NullPointerForTheValueIsRefused) { EXPECT_HR(E_POINTER, GetParam().get(object, nullptr)); }

INSTANTIATE_TEST_SUITE_P(Properties, ObjectPropertyTest, ::testing::ValuesIn(ObjectProperties()), NameOfProperty);

/// What the engine sees of an object: an identifier's record in place, of the others a copy.
class RecordedObjectTest : public ObjectPropertyTest {
 protected:
  bool isInPlace() { return GetParam().interfaceName() == "ICertId"; }
  fake::Snapshot recorded(const fake::Snapshot& value) {
    const fake::Snapshot owner = RecordOf(object);
    return isInPlace() ? owner.at(GetParam().offset) : owner.part(GetParam().offset, value.bytes.size());
  }
  /// The mark of the object as the engine sees it.
  std::string mark() { return MarkIn(GetParam().interfaceName(), recorded(RecordOf(held(L"for its size")))); }
};

TEST_P(RecordedObjectTest, NewObjectHasNothingInItsPlace) {
  EXPECT_OK(put(nullptr));
  EXPECT_TRUE(RecordOf(object).allZero());
}

TEST_P(RecordedObjectTest, WholeRecordIsSeen) {
  Ptr<IDispatch> value = held(L"mark");
  EXPECT_OK(put(value));
  const fake::Snapshot expected = RecordOf(value), seen = recorded(expected);
  EXPECT_EQ(expected.bytes, seen.bytes);
  EXPECT_EQ("mark", mark());
  EXPECT_EQ(isInPlace(), expected.address == RecordOf(object).pointer(GetParam().offset));
}

TEST_P(RecordedObjectTest, ObjectLivesAsLongAsItIsHeld) {
  EXPECT_OK(put(held(L"held")));
  EXPECT_EQ("held", mark());
  EXPECT_OK(put(held(L"another")));
  EXPECT_EQ("another", mark());
}

TEST_P(RecordedObjectTest, RecordKeepsTheEarlierObjectAfterNothing) {
  EXPECT_OK(put(held(L"earlier")));
  EXPECT_OK(put(nullptr));
  EXPECT_EQ("earlier", mark());
}

TEST_P(RecordedObjectTest, LaterChangeLeavesNoFreedPointer) {
  Ptr<IDispatch> value = held(L"before");
  EXPECT_OK(put(value));
  Mark(value, L"a text that is longer than the one it replaces");
  EXPECT_EQ("a text that is longer than the one it replaces", mark());
}

TEST_P(RecordedObjectTest, LaterChangeAfterNothingLeavesNoFreedPointer) {
  Ptr<IDispatch> value = held(L"before");
  EXPECT_OK(put(value));
  EXPECT_OK(put(nullptr));
  Mark(value, L"a text that is longer than the one it replaces");
  const std::string seen = mark();
  EXPECT_TRUE(seen == "before" || seen == "a text that is longer than the one it replaces") << seen;
}

TEST_P(RecordedObjectTest, RefusedObjectLeavesTheRecord) {
  EXPECT_OK(put(held(L"kept")));
  ForeignObject foreign;
  EXPECT_HR(E_INVALIDARG, put(foreign.as<void>()));
  EXPECT_EQ("kept", mark());
}

INSTANTIATE_TEST_SUITE_P(Properties, RecordedObjectTest,
                         ::testing::ValuesIn(Where(ObjectProperties(),
                                                   [](const Property& row) { return row.hasRecord(); })),
                         NameOfProperty);

using FindParamTest = ContractTest;

TEST_F(FindParamTest, MaskStandsBehindTheTemplate) {
  Ptr<IFindParam> param = Make<IFindParam>();
  EXPECT_OK(param->put_info(Field_AlgorithmOidFormat));
  EXPECT_EQ(0x80000000u, MaskIn(RecordOf(param)));
}

TEST_F(FindParamTest, ChangedAlternativeNameOfTheTemplateLeavesNoFreedPointer) {
  Ptr<IFindParam> param = Make<IFindParam>();
  Ptr<ICertificate> certificate = Make<ICertificate>();
  Ptr<IAltName> name = Make<IAltName>();
  EXPECT_OK(name->put_emailAddress(Bstr(L"before@bank")));
  EXPECT_OK(certificate->putref_subjectAltName(name));
  EXPECT_OK(param->putref_certTemplate(certificate));
  EXPECT_OK(name->put_emailAddress(Bstr(L"a text that is longer than the one it replaces")));
  EXPECT_EQ("a text that is longer than the one it replaces", TemplateIn(RecordOf(param)).text(200));
}

}  // namespace
