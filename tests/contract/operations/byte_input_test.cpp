// Which VARIANTs every byte argument takes, and what the engine receives for them.
#include "support/operations.h"

namespace {

class ByteInputTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  HRESULT pass(VARIANT value) {
    if (!objects_) objects_.emplace(openQuivo());
    return GetParam().call(*objects_, value);
  }
  /// From objects of its own: a stream whose form is open.
  HRESULT passToNew(const VARIANT& value) {
    engine().forgetCalls();
    objects_.emplace(openQuivo());
    return pass(value);
  }
  const fake::Call& call() { return engine().only(GetParam().function); }
  fake::Reply& reply() { return engine().on(GetParam().function); }
  Bytes received() { return call().blobBytes(GetParam().argument); }
  uint32_t receivedLength() { return call().blobLength(GetParam().argument); }
  uintptr_t receivedData() { return call().blobData(GetParam().argument); }
  void expectRefused(VARIANT value) {
    EXPECT_HR(kInvalidArgument, pass(value));
    EXPECT_EQ(0u, engine().count(GetParam().function));
  }

 private:
  std::optional<Objects> objects_;
};

uintptr_t DataOf(const Variant& value) { return reinterpret_cast<uintptr_t>(value.safeArray()->pvData); }

TEST_P(ByteInputTest, EmptyVariantIsAnAbsentBlob) {
  EXPECT_OK(pass(Variant()));
  EXPECT_EQ(0u, receivedLength());
  EXPECT_EQ(0u, receivedData());
}

TEST_P(ByteInputTest, ByteArrayReachesTheEngineInPlace) {
  Variant value = ByteArray({7, 0, 255});
  EXPECT_OK(pass(value));
  EXPECT_EQ((Bytes{7, 0, 255}), received());
  EXPECT_EQ(DataOf(value), receivedData());
}

TEST_P(ByteInputTest, ByteArrayIsLockedDuringTheCallOnly) {
  Variant value = ByteArray({1});
  ULONG locks = 0;
  reply().during = [&] { locks = value.safeArray()->cLocks; };
  EXPECT_OK(pass(value));
  EXPECT_EQ(1u, locks);
  EXPECT_EQ(0u, value.safeArray()->cLocks);
}

TEST_P(ByteInputTest, ByteArrayByReferenceReachesTheEngineInPlace) {
  Variant value = ByteArray({1, 2});
  EXPECT_OK(pass(ByRefArray(value)));
  EXPECT_EQ((Bytes{1, 2}), received());
  EXPECT_EQ(DataOf(value), receivedData());
}

TEST_P(ByteInputTest, VariantByReferenceCountsAsWhatItPointsTo) {
  Variant value = ByteArray({1, 2});
  EXPECT_OK(pass(ByRef(value)));
  EXPECT_EQ(DataOf(value), receivedData());
}

TEST_P(ByteInputTest, EmptyVariantByReferenceIsAnAbsentBlob) {
  Variant value;
  EXPECT_OK(pass(ByRef(value)));
  EXPECT_EQ(0u, receivedData());
}

TEST_P(ByteInputTest, ReferenceToAnArrayReferenceIsFollowed) {
  Variant value = ByteArray({5});
  Variant reference = ByRefArray(value);
  EXPECT_OK(pass(ByRef(reference)));
  EXPECT_EQ(DataOf(value), receivedData());
}

TEST_P(ByteInputTest, OnlyOneLevelOfReferenceIsFollowed) {
  Variant value = ByteArray({1});
  Variant reference = ByRef(value);
  expectRefused(ByRef(reference));
}

TEST_P(ByteInputTest, LowerBoundOfAByteArrayIsNotExamined) {
  EXPECT_OK(pass(ByteArray({3, 4}, -5)));
  EXPECT_EQ((Bytes{3, 4}), received());
}

TEST_P(ByteInputTest, ByteArrayWithoutElementsHasLengthZero) {
  EXPECT_OK(pass(ByteArray({})));
  EXPECT_EQ(0u, receivedLength());
}

TEST_P(ByteInputTest, FirstBoundRecordOfTwoDimensionsGivesTheLength) {
  // Two rows of three elements, as they lie in memory: the first bound record is that of the three.
  Variant plain = ManyDimensions(VT_UI1, {{2, 0}, {3, 0}}), vbs = ManyDimensions(VT_VARIANT, {{2, 0}, {3, 0}});
  for (uint8_t i = 0; i < 6; ++i) {
    static_cast<uint8_t*>(plain.safeArray()->pvData)[i] = i;
    VARIANT& element = static_cast<VARIANT*>(vbs.safeArray()->pvData)[i];
    V_VT(&element) = VT_UI1;
    V_UI1(&element) = i;
  }
  for (const Variant* value : {&plain, &vbs}) {
    EXPECT_OK(passToNew(*value));
    EXPECT_EQ((Bytes{0, 1, 2}), received());
  }
}

TEST_P(ByteInputTest, DimensionWithoutElementsGivesLengthZero) {
  for (VARTYPE type : {VT_UI1, VT_VARIANT}) {
    for (const Variant& value : {ManyDimensions(type, {{0, 0}, {3, 0}}), ManyDimensions(type, {{3, 0}, {0, 0}}),
                                 ManyDimensions(type, {{2, 0}, {0, 0}, {3, 0}})}) {
      EXPECT_OK(passToNew(value));
      EXPECT_EQ(0u, receivedLength());
    }
  }
}

TEST_P(ByteInputTest, VbsArrayReachesTheEngineAsACopy) {
  Variant value = VbsByteArray({9, 0, 255});
  EXPECT_OK(pass(value));
  EXPECT_EQ((Bytes{9, 0, 255}), received());
  EXPECT_NE(DataOf(value), receivedData());
}

TEST_P(ByteInputTest, VbsArrayIsUnlockedBeforeTheCall) {
  Variant value = VbsByteArray({1});
  ULONG locks = 1;
  reply().during = [&] { locks = value.safeArray()->cLocks; };
  EXPECT_OK(pass(value));
  EXPECT_EQ(0u, locks);
}

TEST_P(ByteInputTest, VbsArrayByReferenceIsAccepted) {
  Variant value = VbsByteArray({1, 2}, 7);
  EXPECT_OK(pass(ByRefArray(value)));
  EXPECT_EQ((Bytes{1, 2}), received());
}

TEST_P(ByteInputTest, VariableOfAScriptWithAnArrayIsAccepted) {
  Variant array = VbsByteArray({1, 2});
  Variant variable = ByRefArray(array);
  EXPECT_OK(pass(ByRef(variable)));
  EXPECT_EQ((Bytes{1, 2}), received());
}

TEST_P(ByteInputTest, VbsArrayWithoutElementsHasLengthZero) {
  EXPECT_OK(pass(VbsByteArray({})));
  EXPECT_EQ(0u, receivedLength());
}

TEST_P(ByteInputTest, ElementOfAnotherTypeRefusesTheWholeArray) {
  Variant one = Variant::number(1);
  V_VT(one.out()) = VT_UI1;
  Variant wrong = Variant::number(1);
  for (VARTYPE type : {VT_I2, VT_I4, VT_I1, VT_BOOL, VT_EMPTY, VT_NULL, VT_UI2}) {
    V_VT(wrong.out()) = type;
    Variant array = VariantArray({one, wrong, one});
    expectRefused(array);
    EXPECT_EQ(0u, array.safeArray()->cLocks);
  }
}

TEST_P(ByteInputTest, WrongElementIsFoundInEveryPlace) {
  Variant one = Variant::number(1);
  V_VT(one.out()) = VT_UI1;
  Variant wrong = Variant::number(1);
  expectRefused(VariantArray({wrong, one}));
  expectRefused(VariantArray({one, wrong}));
}

TEST_P(ByteInputTest, ElementThatIsATextIsRefused) { expectRefused(VariantArray({Variant::text(L"1")})); }

TEST_P(ByteInputTest, ElementByReferenceIsRefused) {
  BYTE byte = 1;
  Variant reference;
  V_VT(reference.out()) = VT_BYREF | VT_UI1;
  V_UI1REF(reference.out()) = &byte;
  Variant array = VbsByteArray({0});
  static_cast<VARIANT*>(array.safeArray()->pvData)[0] = reference.get();
  expectRefused(array);
}

TEST_P(ByteInputTest, TextIsNeverTakenAsBytes) {
  expectRefused(Variant::text(L"bytes"));
  Variant text = Variant::text(L"bytes");
  expectRefused(ByRef(text));
}

TEST_P(ByteInputTest, OtherTypesAreRefused) {
  expectRefused(Variant::null());
  expectRefused(Variant::number(1));
  expectRefused(StringArray({L"1"}));
  expectRefused(ManyDimensions(VT_I2, {{2, 0}}));
  expectRefused(ManyDimensions(VT_I1, {{2, 0}}));
  Variant missing = Variant::number(DISP_E_PARAMNOTFOUND);
  V_VT(missing.out()) = VT_ERROR;
  expectRefused(missing);
}

TEST_P(ByteInputTest, ObjectIsRefused) { expectRefused(Variant::object(Make<ICertId>())); }

TEST_P(ByteInputTest, NullReferencesAreRefused) {
  expectRefused(NullRef(VT_VARIANT));
  expectRefused(NullRef(kByteArray));
  expectRefused(NullRef(kVbsArray));
}

TEST_P(ByteInputTest, NullArraysAreRefused) {
  Variant plain = Variant::array(VT_UI1, nullptr), vbs = Variant::array(VT_VARIANT, nullptr);
  expectRefused(plain);
  expectRefused(vbs);
  expectRefused(ByRefArray(plain));
  expectRefused(ByRefArray(vbs));
}

TEST_P(ByteInputTest, CopyThatCannotBeAllocatedIsReported) {
  Variant value = VbsByteArray({1, 2});
  pass(Variant());
  engine().forgetCalls();
  Module::get().failAllocation(0);
  EXPECT_HR(kOutOfMemory, pass(value));
  EXPECT_EQ(0u, engine().count(GetParam().function));
  EXPECT_EQ(0u, value.safeArray()->cLocks);
}

TEST_P(ByteInputTest, ArrayThatCannotBeLockedIsReported) {
  for (Variant* value : {new Variant(ByteArray({1})), new Variant(VbsByteArray({1}))}) {
    const ULONG full = value->safeArray()->cLocks = 0xFFFF;
    const HRESULT refused = SafeArrayLock(value->safeArray());
    value->safeArray()->cLocks = full;
    ASSERT_TRUE(FAILED(refused));
    EXPECT_HR(refused, pass(*value));
    EXPECT_EQ(0u, engine().count(GetParam().function));
    value->safeArray()->cLocks = 0;
    delete value;
  }
}

TEST_P(ByteInputTest, FailedUnlockIsTheResultOfASuccessfulCall) {
  Variant value = ByteArray({1});
  reply().during = [&] { value.safeArray()->cLocks = 0; };
  EXPECT_HR(E_UNEXPECTED, pass(value));
  value.safeArray()->cLocks = 0;
}

TEST_P(ByteInputTest, EngineCodeWinsOverAFailedUnlock) {
  Variant value = ByteArray({1});
  reply().result = 0x19;
  reply().during = [&] { value.safeArray()->cLocks = 0; };
  EXPECT_HR(0xE0690019, pass(value));
  value.safeArray()->cLocks = 0;
}

INSTANTIATE_TEST_SUITE_P(Arguments, ByteInputTest, ::testing::ValuesIn(ByteInputs()), NameOfRow<OperationArgument>);

}  // namespace
