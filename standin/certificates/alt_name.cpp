#include "standin/certificates/alt_name.h"

#include "engine/layout.h"
#include "standin/base/ansi.h"
#include "standin/base/asn1_text.h"
#include "standin/base/codes.h"
#include "standin/certificates/cert_extensions.h"

namespace standin {
namespace {

/// The place of a record's text in an alternative name.
struct AltNameField {
  char* AltNameRecord::*text;
  int kind;         ///< of the general name
  const char* oid;  ///< of the directory attribute or of the other name
};

/// The kinds that no standard defines are "other names" under example identifiers.
constexpr AltNameField kFields[] = {
    {&AltNameRecord::emailAddress, GEN_EMAIL, ""},
    {&AltNameRecord::DNS, GEN_DNS, ""},
    {&AltNameRecord::URI, GEN_URI, ""},
    {&AltNameRecord::IP, GEN_IPADD, ""},
    {&AltNameRecord::organizationName, GEN_DIRNAME, "2.5.4.10"},
    {&AltNameRecord::registredAddress, GEN_DIRNAME, "2.5.4.26"},
    {&AltNameRecord::surname, GEN_DIRNAME, "2.5.4.4"},
    {&AltNameRecord::businessCategory, GEN_DIRNAME, "2.5.4.15"},
    {&AltNameRecord::telephoneNumber, GEN_DIRNAME, "2.5.4.20"},
    {&AltNameRecord::description, GEN_DIRNAME, "2.5.4.13"},
    {&AltNameRecord::account_number, GEN_OTHERNAME, "2.999.1.1"},
    {&AltNameRecord::bank_id, GEN_OTHERNAME, "2.999.1.2"},
    {&AltNameRecord::physicalDelivery, GEN_DIRNAME, "2.5.4.19"},
    {&AltNameRecord::exchange_address, GEN_OTHERNAME, "2.999.1.3"},
    {&AltNameRecord::extraName, GEN_OTHERNAME, "2.999.1.4"},
};
static_assert(std::size(kFields) == std::tuple_size_v<decltype(Layout<AltNameRecord>::kMembers)>);

std::string AddressText(const ASN1_OCTET_STRING* address) {
  const unsigned char* byte = address->data;
  char text[48];
  if (address->length == 4) {
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", byte[0], byte[1], byte[2], byte[3]);
    return text;
  }
  if (address->length != 16) return HexOf({byte, static_cast<size_t>(address->length)});
  std::string joined;
  for (int i = 0; i < 16; i += 2) {
    std::snprintf(text, sizeof text, i == 0 ? "%X" : ":%X", static_cast<unsigned>(byte[i]) << 8 | byte[i + 1]);
    joined += text;
  }
  return joined;
}

std::string OtherNameText(const OTHERNAME* name) {
  const ASN1_TYPE* value = name->value;
  switch (ASN1_TYPE_get(value)) {
    case V_ASN1_UTF8STRING:
    case V_ASN1_IA5STRING:
    case V_ASN1_PRINTABLESTRING:
    case V_ASN1_BMPSTRING:
      return TextOf(value->value.asn1_string);
    default:
      return {};
  }
}

/// Calls `put` with the object identifier, if the name has one, and the text of every part of the name.
template <typename Put>
void ForEachText(const GENERAL_NAME* name, Put put) {
  switch (name->type) {
    case GEN_EMAIL:
    case GEN_DNS:
    case GEN_URI:
      return put({}, TextOf(name->d.ia5));
    case GEN_IPADD:
      return put({}, AddressText(name->d.iPAddress));
    case GEN_OTHERNAME:
      return put(ObjectText(name->d.otherName->type_id, true), OtherNameText(name->d.otherName));
    case GEN_DIRNAME:
      for (int i = 0; i < X509_NAME_entry_count(name->d.directoryName); ++i) {
        const X509_NAME_ENTRY* entry = X509_NAME_get_entry(name->d.directoryName, i);
        put(ObjectText(X509_NAME_ENTRY_get_object(entry), true), TextOf(X509_NAME_ENTRY_get_data(entry)));
      }
  }
}

GeneralNamePtr OtherName(const char* oid, const std::string& utf8) {
  GeneralNamePtr name(GENERAL_NAME_new());
  ObjectPtr type(OBJ_txt2obj(oid, 1));
  Owned<ASN1_TYPE_free> value(ASN1_TYPE_new());
  ASN1_STRING* text = ASN1_STRING_type_new(V_ASN1_UTF8STRING);
  if (name == nullptr || type == nullptr || value == nullptr || text == nullptr) Fail(kWinOutOfMemory);
  ASN1_TYPE_set(value.get(), V_ASN1_UTF8STRING, text);
  if (ASN1_STRING_set(text, utf8.data(), static_cast<int>(utf8.size())) != 1 ||
      GENERAL_NAME_set0_othername(name.get(), type.get(), value.get()) != 1) {
    Fail(kWinOutOfMemory);
  }
  type.release();
  value.release();
  return name;
}

void Push(GENERAL_NAMES* names, GeneralNamePtr name) {
  if (name == nullptr) Fail(kRequestFailed);
  if (sk_GENERAL_NAME_push(names, name.get()) == 0) Fail(kWinOutOfMemory);
  name.release();
}

}  // namespace

bool FillAltName(AltNameRecord& record, const X509* certificate, int extensionNid, Buffers& buffers) {
  const GeneralNamesPtr names(
      static_cast<GENERAL_NAMES*>(X509_get_ext_d2i(certificate, extensionNid, nullptr, nullptr)));
  if (names == nullptr) return false;
  for (int i = 0; i < sk_GENERAL_NAME_num(names.get()); ++i) {
    const GENERAL_NAME* name = sk_GENERAL_NAME_value(names.get(), i);
    ForEachText(name, [&](const std::string& oid, const std::string& utf8) {
      const auto* field = std::ranges::find_if(
          kFields, [&](const AltNameField& one) { return one.kind == name->type && (oid.empty() || oid == one.oid); });
      if (field == std::end(kFields) || record.*field->text != nullptr || utf8.empty()) return;
      record.*field->text = buffers.copyText(AnsiFromUtf8(utf8));
    });
  }
  return true;
}

GeneralNamesPtr GeneralNamesOf(const AltNameRecord& record) {
  GeneralNamesPtr names(GENERAL_NAMES_new());
  NamePtr directory(X509_NAME_new());
  if (names == nullptr || directory == nullptr) Fail(kWinOutOfMemory);
  for (const AltNameField& field : kFields) {
    const std::string utf8 = Utf8FromAnsi(TextOrEmpty(record.*field.text));
    if (utf8.empty()) continue;
    if (field.kind == GEN_DIRNAME) {
      const auto* bytes = reinterpret_cast<const unsigned char*>(utf8.data());
      const int length = static_cast<int>(utf8.size());
      if (X509_NAME_add_entry_by_txt(directory.get(), field.oid, MBSTRING_UTF8, bytes, length, -1, 0) != 1) {
        Fail(kRequestFailed);
      }
    } else {
      Push(names.get(), field.kind == GEN_OTHERNAME
                            ? OtherName(field.oid, utf8)
                            : GeneralNamePtr(a2i_GENERAL_NAME(nullptr, nullptr, nullptr, field.kind, utf8.c_str(), 0)));
    }
  }
  if (X509_NAME_entry_count(directory.get()) > 0) {
    GeneralNamePtr name(GENERAL_NAME_new());
    if (name == nullptr) Fail(kWinOutOfMemory);
    GENERAL_NAME_set0_value(name.get(), GEN_DIRNAME, directory.release());
    Push(names.get(), std::move(name));
  }
  if (sk_GENERAL_NAME_num(names.get()) == 0) return nullptr;
  return names;
}

}  // namespace standin
