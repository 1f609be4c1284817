// The base of the tests of array properties: the form and the content of arrays, whatever their elements are.
#pragma once

#include "contract/properties/properties.h"
#include "support/operations.h"

/// The elements as texts: a byte's number, a string in the ANSI code page, an object's mark.
using Content = std::vector<std::string>;
/// What an array holds that could not be filled: a byte 0, an empty string, a null reference.
constexpr int kNoElement = -1;

class ArrayTest : public ContractTest, public ::testing::WithParamInterface<Property> {
 protected:
  VARTYPE elementType() const;
  /// An array of the property's kind with elements that stand for numbers.
  Variant given(std::initializer_list<int> numbers, LONG lowerBound = 0);
  /// Two rows of three elements: 1, 2, 3 and so on as they lie in memory. The first bound record is that of the three.
  Variant grid();
  Content contentOf(std::initializer_list<int> numbers) const;

  HRESULT tryPut(const VARIANT& value) { return GetParam().put(object, value); }
  HRESULT tryGet(Variant& value) { return GetParam().get(object, value.out()); }
  void put(const VARIANT& value) { EXPECT_OK(tryPut(value)); }
  Content kept();
  Content recorded();
  fake::Snapshot record() { return RecordOf(object); }
  int32_t recordCount() { return record().i32(GetParam().offset); }
  uintptr_t recordPointer() { return record().pointer(GetParam().pointerOffset()); }

  Ptr<IDispatch> object = GetParam().make();

 private:
  void fill(SAFEARRAY* array, size_t index, int number);
};
