// Properties that are arrays of objects: policies and extensions, receivers.
#include "contract/properties/arrays.h"
#include "support/foreign_object.h"

namespace {

class ObjectArrayTest : public ArrayTest {
 protected:
  Ptr<IDispatch> element(const wchar_t* mark) { return Marked(GetParam().content, mark); }
  std::vector<Ptr<IDispatch>> keptObjects() {
    Variant value;
    EXPECT_OK(tryGet(value));
    return ObjectsOf(value);
  }
};

TEST_P(ObjectArrayTest, ObjectsThatAreReadAreTheAssignedOnes) {
  Ptr<IDispatch> first = element(L"1"), second = element(L"2");
  put(ObjectArray({first, second}));
  ASSERT_EQ(2u, keptObjects().size());
  EXPECT_EQ(first.get(), keptObjects()[0].get());
  EXPECT_EQ(second.get(), keptObjects()[1].get());
}

TEST_P(ObjectArrayTest, ReferencesAreHeldOnceForEachPlace) {
  Ptr<IDispatch> held = element(L"1");
  put(ObjectArray({held, held}));
  EXPECT_EQ(3u, held.references());
  EXPECT_EQ((Content{"1", "1"}), recorded());
  put(ObjectArray({held}));
  EXPECT_EQ(2u, held.references());
  put(Variant());
  EXPECT_EQ(1u, held.references());
}

TEST_P(ObjectArrayTest, ElementsBehindTheFirstBoundRecordAreNotHeld) {
  Ptr<IDispatch> held = element(L"1");
  Variant grid = ManyDimensions(VT_DISPATCH, {{2, 0}, {3, 0}});
  for (int i = 0; i < 6; ++i) {
    held->AddRef();
    static_cast<IDispatch**>(grid.safeArray()->pvData)[i] = held;
  }
  put(grid);
  grid = Variant();
  EXPECT_EQ(1u + 3u, held.references());
}

TEST_P(ObjectArrayTest, NullElementIsANullReference) {
  put(ObjectArray({element(L"1"), nullptr}));
  ASSERT_EQ(2u, keptObjects().size());
  EXPECT_EQ(nullptr, keptObjects()[1].get());
  EXPECT_EQ(2, recordCount());
}

TEST_P(ObjectArrayTest, LaterChangeOfAnElementLeavesNoFreedPointer) {
  // Too long for the place of the string that it replaces.
  const std::wstring longer(200, L'x');
  Ptr<IDispatch> held = element(L"before");
  put(ObjectArray({held}));
  Mark(held, longer.c_str());
  EXPECT_EQ(Content{std::string(200, 'x')}, recorded());
}

TEST_P(ObjectArrayTest, ForeignElementIsRefusedUntouched) {
  ForeignObject foreign;
  Ptr<IDispatch> former = element(L"former");
  put(ObjectArray({former}));
  EXPECT_HR(E_INVALIDARG, tryPut(ObjectArray({element(L"1"), foreign})));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  ASSERT_EQ(1u, keptObjects().size());
  EXPECT_EQ(former.get(), keptObjects()[0].get());
  put(Variant());
  EXPECT_EQ(1, foreign.references());
}

TEST_P(ObjectArrayTest, ElementOfAnotherClassOfTheModuleIsRefused) {
  Ptr<ISignParam> wrong = Make<ISignParam>();
  put(ObjectArray({element(L"kept")}));
  EXPECT_HR(E_INVALIDARG, tryPut(ObjectArray({wrong})));
  EXPECT_EQ(Content{"kept"}, recorded());
  EXPECT_EQ(1u, wrong.references());
}

TEST_P(ObjectArrayTest, FormerObjectsAreReleasedThoughTheNewOnesCannotBeHeld) {
  for (bool locked : {true, false}) {
    Ptr<IDispatch> former = element(L"former");
    put(ObjectArray({former}));
    Variant array = ObjectArray({element(L"1")});
    if (locked) array.safeArray()->cLocks = 0xFFFF;
    if (!locked) Module::get().failAllocation(0);
    EXPECT_HR(locked ? E_UNEXPECTED : E_OUTOFMEMORY, tryPut(array));
    array.safeArray()->cLocks = 0;
    EXPECT_EQ(1u, former.references());
  }
}

INSTANTIATE_TEST_SUITE_P(Properties, ObjectArrayTest,
                         ::testing::ValuesIn(Where(ArrayProperties(),
                                                   [](const Property& row) { return row.content.starts_with("I"); })),
                         NameOfProperty);

}  // namespace
