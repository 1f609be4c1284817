// The properties of the parameter and certificate objects as data: what holds for a kind of property is tested once.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "contract/properties/records.h"

/// An object that has the property, ready for it to be set.
using MakeOwner = std::function<Ptr<IDispatch>()>;
using ReadRecord = std::function<fake::Snapshot(IDispatch*)>;

struct StringProperty {
  std::string name;
  MakeOwner make;
  std::function<HRESULT(IDispatch*, BSTR*)> get;
  std::function<HRESULT(IDispatch*, BSTR)> put;
  ReadRecord record;
  size_t offset;
};
std::vector<StringProperty> stringProperties();

/// A property that is a VARIANT: bytes, strings or objects.
struct VariantProperty {
  std::string name;
  MakeOwner make;
  std::function<HRESULT(IDispatch*, VARIANT*)> get;
  std::function<HRESULT(IDispatch*, VARIANT)> put;
  ReadRecord record;
  size_t countOffset;
  size_t pointerOffset;
};
std::vector<VariantProperty> byteProperties();
std::vector<VariantProperty> stringArrayProperties();

/// A 32-bit number or an enumeration.
struct NumberProperty {
  std::string name;
  MakeOwner make;
  std::function<HRESULT(IDispatch*, int32_t*)> get;
  std::function<HRESULT(IDispatch*, int32_t)> put;
  ReadRecord record;
  size_t offset;
};
std::vector<NumberProperty> numberProperties();

template <class Row>
std::string nameOfProperty(const ::testing::TestParamInfo<Row>& info) {
  return info.param.name;
}

inline void PrintTo(const StringProperty& row, std::ostream* out) { *out << row.name; }
inline void PrintTo(const VariantProperty& row, std::ostream* out) { *out << row.name; }
inline void PrintTo(const NumberProperty& row, std::ostream* out) { *out << row.name; }
