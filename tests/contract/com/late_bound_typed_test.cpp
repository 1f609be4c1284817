// Outputs of late-bound calls in typed variables: converted and complete; the memory around them stays untouched.
#include <array>
#include <cstring>

#include "support/invoke.h"
#include "support/operations.h"

namespace {

constexpr int32_t kCount = 0x12345678;

/// A typed variable between two guards.
class Typed {
 public:
  explicit Typed(VARTYPE type) {
    bytes_.fill(0xA5);
    std::memset(bytes_.data() + kGuard, 0, sizeof(DECIMAL));
    V_VT(reference_.out()) = VT_BYREF | type;
    V_BYREF(reference_.out()) = bytes_.data() + kGuard;
  }
  const Variant& reference() const { return reference_; }
  template <class T>
  T value() const {
    T read;
    std::memcpy(&read, bytes_.data() + kGuard, sizeof(T));
    return read;
  }
  /// True if only the first `size` bytes of the variable were written.
  bool wroteOnly(size_t size) const {
    for (size_t i = 0; i < bytes_.size(); ++i) {
      const bool guard = i < kGuard || i >= kGuard + sizeof(DECIMAL);
      if (guard && bytes_[i] != 0xA5) return false;
      if (!guard && i >= kGuard + size && bytes_[i] != 0) return false;
    }
    return true;
  }

 private:
  static constexpr size_t kGuard = 16;

  alignas(16) std::array<uint8_t, 2 * kGuard + sizeof(DECIMAL)> bytes_;
  Variant reference_;
};

class LateBoundTypedTest : public ContractTest {
 protected:
  /// Starts a stream whose count of bytes left goes into `left`.
  HRESULT begin(const VARIANT& left, int32_t count = kCount) {
    engine().on("QUIVO_StrDecryptInitMem").left = count;
    return Invoke(objects.quivo, {L"StrDecryptInitMem",
                                  DISPATCH_METHOD,
                                  {Variant::object(objects.decrypt), Variant(), left, Variant::object(objects.stream)},
                                  {},
                                  false})
        .raw;
  }
  template <class T>
  void expectStored(VARTYPE type, T expected, int32_t count = kCount) {
    Typed variable(type);
    EXPECT_OK(begin(variable.reference(), count)) << type;
    EXPECT_EQ(expected, variable.value<T>()) << type;
    EXPECT_TRUE(variable.wroteOnly(sizeof(T))) << type;
  }

  Objects objects{openQuivo()};
};

TEST_F(LateBoundTypedTest, NumbersOfEverySizeReceiveAllTheirBytes) {
  expectStored<int8_t>(VT_I1, 0x7A, 0x7A);
  expectStored<uint8_t>(VT_UI1, 0xFA, 0xFA);
  expectStored<int16_t>(VT_I2, 0x7ABC, 0x7ABC);
  expectStored<uint16_t>(VT_UI2, 0xFABC, 0xFABC);
  expectStored<int16_t>(VT_BOOL, -1, 5);
  expectStored<int32_t>(VT_I4, kCount);
  expectStored<int32_t>(VT_I4, -5, -5);
  expectStored<uint32_t>(VT_UI4, kCount);
  expectStored<int32_t>(VT_INT, kCount);
  expectStored<uint32_t>(VT_UINT, kCount);
  expectStored<float>(VT_R4, 4096.0F, 4096);
  expectStored<int64_t>(VT_I8, kCount);
  expectStored<int64_t>(VT_I8, -5, -5);
  expectStored<uint64_t>(VT_UI8, kCount);
  expectStored<double>(VT_R8, kCount);
  expectStored<double>(VT_DATE, 40000.0, 40000);
  expectStored<int64_t>(VT_CY, int64_t{kCount} * 10000);
}

TEST_F(LateBoundTypedTest, ErrorVariableReceivesNoNumber) {
  Typed variable(VT_ERROR);
  EXPECT_TRUE(FAILED(begin(variable.reference())));
  EXPECT_TRUE(variable.wroteOnly(0));
}

TEST_F(LateBoundTypedTest, NumberThatDoesNotFitIsRefused) {
  for (VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2}) {
    Typed variable(type);
    EXPECT_HR(DISP_E_OVERFLOW, begin(variable.reference())) << type;
    EXPECT_TRUE(variable.wroteOnly(0)) << type;
  }
}

TEST_F(LateBoundTypedTest, TypesLargerThanAValueAreRefused) {
  for (VARTYPE type : {VT_DECIMAL, VT_RECORD}) {
    Typed variable(type);
    EXPECT_HR(DISP_E_TYPEMISMATCH, begin(variable.reference())) << type;
    EXPECT_TRUE(variable.wroteOnly(0)) << type;
  }
}

TEST_F(LateBoundTypedTest, ArrayVariableReceivesItsKindOfArrayOnly) {
  engine().on("QUIVO_HashMem").output = {1, 2};
  for (VARTYPE element : {VT_UI1, VT_VARIANT}) {
    SAFEARRAY* array = SafeArrayCreateVector(element, 0, 3);
    Variant reference;
    V_VT(reference.out()) = static_cast<VARTYPE>(VT_BYREF | VT_ARRAY | element);
    V_ARRAYREF(reference.out()) = &array;
    const HRESULT hr = Invoke(objects.quivo, {L"HashMem", DISPATCH_METHOD, {Variant(), reference}, {}, false}).raw;
    EXPECT_HR(element == VT_UI1 ? S_OK : DISP_E_TYPEMISMATCH, hr);
    EXPECT_EQ(element == VT_UI1 ? 2u : 3u, array->rgsabound[0].cElements);
    SafeArrayDestroy(array);
  }
}

TEST_F(LateBoundTypedTest, FormerTextOfATypedVariableIsFreed) {
  Bstr text(L"before");
  EXPECT_OK(begin(ByRefText(text), 12));
  EXPECT_EQ(L"12", text.text());
}

TEST_F(LateBoundTypedTest, FormerObjectOfATypedVariableIsReleased) {
  engine().on("QUIVO_ParseCert").certificate.emplace();
  Ptr<ICertificate> former = Make<ICertificate>();
  Ptr<IDispatch> variable = former.as<IDispatch>();
  EXPECT_OK(Invoke(objects.quivo,
                   {L"ParseCert", DISPATCH_METHOD, {Variant(), Variant::number(1), ByRefObject(variable)}, {}, false})
                .raw);
  EXPECT_NE(static_cast<IDispatch*>(former), variable.get());
  EXPECT_EQ(1u, former.references());
}

TEST_F(LateBoundTypedTest, FailureKeepsATypedVariable) {
  engine().on("QUIVO_HashMem").result = 0x19;
  Bstr text(L"before");
  EXPECT_HR(DISP_E_EXCEPTION,
            Invoke(objects.quivo, {L"HashMem", DISPATCH_METHOD, {Variant(), ByRefText(text)}, {}, false}).raw);
  EXPECT_EQ(L"before", text.text());
}

TEST_F(LateBoundTypedTest, EmptyOutputOfAFailureEmptiesAVariable) {
  engine().on("QUIVO_StrEncryptUpdateMem").result = 0x19;
  Variant early = Variant::text(L"before"), late = Variant::text(L"before");
  EXPECT_HR(0xE0690019, objects.quivo->StrEncryptUpdateMem(objects.encrypt, objects.stream, Variant(), early.out()));
  EXPECT_HR(0xE0690019, Invoke(objects.quivo, {L"StrEncryptUpdateMem",
                                               DISPATCH_METHOD,
                                               {Variant::object(objects.encrypt), Variant::object(objects.stream),
                                                Variant(), ByRef(late)},
                                               {},
                                               false})
                            .result);
  EXPECT_EQ(VT_EMPTY, early.type());
  EXPECT_EQ(VT_EMPTY, late.type());
}

}  // namespace
