#include "contract/properties/properties.h"

#include <algorithm>

#include "contract/com/interface_tables.h"

namespace {

template <class Condition>
std::vector<Property> PropertiesWhere(Condition condition) {
  std::vector<Property> all = AllProperties();
  // The type decides about the identifier's other properties; the time of a signature cannot be changed.
  std::erase_if(all, [&](const Property& property) { return property.name == "CertId_type" || !condition(property); });
  return all;
}

/// Behind the '@' of a listed property: its place in the record, and what a VARIANT holds.
void ReadPlace(const std::string& line, Property& property) {
  const size_t at = line.find('@');
  if (at == std::string::npos) return;
  property.offset = std::stoul(line.substr(at + 1));
  const size_t space = line.find(' ', at);
  if (space != std::string::npos) property.content = line.substr(space + 1);
}

const InterfaceTable& TableOf(const std::string& interfaceName) {
  return *std::find_if(kInterfaces.begin(), kInterfaces.end(),
                       [&](const InterfaceTable& table) { return table.name == interfaceName; });
}

std::vector<Property> FindProperties() {
  std::vector<Property> all;
  for (const CoClass& owner : Classes()) {
    const std::vector<Member> members = MembersOf(owner.interfaceName);
    const std::vector<std::string>& lines = TableOf(owner.interfaceName).members;
    for (size_t i = 0; i + 1 < members.size() && members[i].kind == INVOKE_PROPERTYGET; i += 2) {
      Property& property = all.emplace_back(
          Property{owner.name + "_" + members[i].name, owner, members[i], members[i + 1], "", Property::kNoRecord});
      ReadPlace(lines.at(i / 2), property);
    }
  }
  return all;
}

/// The first text of a class, which marks its objects.
const Property& MarkOf(const std::string& interfaceName) {
  for (const Property& property : AllProperties()) {
    if (property.owner.interfaceName == interfaceName && property.type() == "BSTR") return property;
  }
  throw std::out_of_range(interfaceName + " has no text");
}

}  // namespace

Ptr<IDispatch> Property::make() const {
  Ptr<IDispatch> object = MakeUnknown(owner.clsid, IID_IDispatch).as<IDispatch>();
  if (Ptr<ICertId> id = object.as<ICertId>()) {
    const bool isKeyId = getter.name == "keyId", isHash = getter.name == "certHash";
    EXPECT_OK(id->put_type(isKeyId ? Id_KeyId : isHash ? Id_CertHash : Id_Issuer_And_Serial));
  }
  return object;
}

Variant Property::sample() const {
  if (isObject()) return Variant::object(Marked(interfaceName(), L"x"));
  if (type() == "BSTR") return Variant::text((L"значение " + Widen(name)).c_str());
  if (content == "bytes") return ByteArray({1, 2});
  if (content == "strings") return StringArray({L"1", L"2"});
  if (type() == "VARIANT") return ObjectArray({Marked(content, L"x")});
  Variant value = Variant::number(static_cast<LONG>(offset + 3));
  if (type() != "DATE") return value;
  V_VT(value.out()) = VT_DATE;
  V_DATE(value.out()) = 40968.5;
  return value;
}

SlotValue SlotOf(const Variant& value) {
  const VARIANT& raw = value.get();
  switch (value.type()) {
    case VT_DISPATCH:
      return V_DISPATCH(&raw);
    case VT_BSTR:
      return V_BSTR(&raw);
    case VT_DATE:
      return V_DATE(&raw);
    case VT_I4:
      return V_I4(&raw);
    default:
      return value;
  }
}

const std::vector<Property>& AllProperties() {
  static const std::vector<Property> kAll = FindProperties();
  return kAll;
}

std::vector<Property> TextProperties() {
  std::vector<Property> texts = PropertiesWhere([](const Property& property) { return property.type() == "BSTR"; });
  // The last text of an alternative name has no name in the library: its slots follow those of the others.
  Property extra = *std::find_if(texts.begin(), texts.end(),
                                 [](const Property& property) { return property.name == "AltName_exchange_address"; });
  extra.name = "AltName_extraName";
  extra.getter.offset += 2 * sizeof(void*);
  extra.setter.offset += 2 * sizeof(void*);
  extra.offset += sizeof(void*);
  texts.push_back(extra);
  return texts;
}

std::vector<Property> NumberProperties() {
  return PropertiesWhere([](const Property& property) {
    const bool isOther = property.isObject() || property.type() == "BSTR" || property.type() == "VARIANT";
    return !isOther && property.type() != "DATE" && property.hasRecord();
  });
}

std::vector<Property> DateProperties() {
  return PropertiesWhere([](const Property& property) { return property.type() == "DATE" && property.hasRecord(); });
}

std::vector<Property> ObjectProperties() {
  return PropertiesWhere([](const Property& property) { return property.isObject(); });
}

std::vector<Property> ArrayProperties(const std::string& content) {
  return PropertiesWhere([&](const Property& property) {
    return property.type() == "VARIANT" && (content.empty() || property.content == content);
  });
}

Ptr<IDispatch> Marked(const std::string& interfaceName, const wchar_t* mark) {
  Ptr<IDispatch> object = MarkOf(interfaceName).make();
  Mark(object, mark);
  return object;
}

void Mark(IDispatch* object, const wchar_t* mark) {
  EXPECT_OK(MarkOf(InterfaceNameOf(object)).put(object, Bstr(mark)));
}

std::string MarkIn(const std::string& interfaceName, const fake::Snapshot& record) {
  return record.text(MarkOf(interfaceName).offset);
}
