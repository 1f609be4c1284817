// The properties of all classes, found in the type library and called through their slots: what holds for a kind of
// property is tested once. Their places in the engine's records stand in the listing of the interfaces.
#pragma once

#include <string>
#include <vector>

#include "support/records.h"
#include "support/type_library.h"

struct Property {
  /// "Certificate_subject".
  std::string name;
  CoClass owner;
  Member getter, setter;
  /// What a VARIANT holds: "bytes", "strings" or an interface.
  std::string content;
  /// In the owner's record; kNoRecord for a class whose record no test sees.
  size_t offset;

  static constexpr size_t kNoRecord = SIZE_MAX;

  /// An object that has the property, ready for it to be set.
  Ptr<IDispatch> make() const;
  /// A value of its type; a text of its own for every property.
  Variant sample() const;
  HRESULT get(IDispatch* object, void* value) const { return CallSlot(object, getter, {value}); }
  HRESULT put(IDispatch* object, SlotValue value) const { return CallSlot(object, setter, {value}); }

  /// As it is assigned.
  const std::string& type() const { return setter.arguments[0].type; }
  bool isObject() const { return type().ends_with("*"); }
  /// Of an object, or of the elements of an array of objects.
  std::string interfaceName() const { return isObject() ? type().substr(0, type().size() - 1) : content; }
  bool hasRecord() const { return offset != kNoRecord; }
  /// Where the pointer of an array stands, whose count stands at `offset`.
  size_t pointerOffset() const { return (offset + 4 + 7) / 8 * 8; }
};

/// With those that are not set as they are read: the type of an identifier, the time of a signature.
const std::vector<Property>& AllProperties();
std::vector<Property> TextProperties();
std::vector<Property> NumberProperties();
std::vector<Property> DateProperties();
std::vector<Property> ObjectProperties();
/// Of VARIANTs that hold "bytes" or "strings", or objects for any other `content`; all of them without one.
std::vector<Property> ArrayProperties(const std::string& content = "");

inline std::ostream& operator<<(std::ostream& out, const Property& row) { return out << row.name; }

inline std::string NameOfProperty(const ::testing::TestParamInfo<Property>& info) { return info.param.name; }

/// A value as a setter's slot takes it.
SlotValue SlotOf(const Variant& value);

/// A new object of a class that objects and arrays hold, marked by a text; and the text that its record shows.
Ptr<IDispatch> Marked(const std::string& interfaceName, const wchar_t* mark);
void Mark(IDispatch* object, const wchar_t* mark);
std::string MarkIn(const std::string& interfaceName, const fake::Snapshot& record);
