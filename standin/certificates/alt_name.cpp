// Conversion of alternative names.
#include "standin/certificates/alt_name.h"

#include "standin/base/ansi.h"
#include "standin/base/asn1_text.h"
#include "standin/base/codes.h"
#include "standin/certificates/cert_extensions.h"

namespace standin {
namespace {

using Place = AltNameField::Place;

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

class AltNameFiller {
 public:
  AltNameFiller(AltNameRecord& record, Buffers& buffers) : record_(record), buffers_(buffers) {}

  void add(const GENERAL_NAME* name) {
    switch (name->type) {
      case GEN_EMAIL:
        put(Place::kEmail, {}, TextOf(name->d.rfc822Name));
        break;
      case GEN_DNS:
        put(Place::kDns, {}, TextOf(name->d.dNSName));
        break;
      case GEN_URI:
        put(Place::kUri, {}, TextOf(name->d.uniformResourceIdentifier));
        break;
      case GEN_IPADD:
        put(Place::kIp, {}, AddressText(name->d.iPAddress));
        break;
      case GEN_OTHERNAME:
        put(Place::kOther, ObjectText(name->d.otherName->type_id, true), OtherNameText(name->d.otherName));
        break;
      case GEN_DIRNAME:
        addDirectoryName(name->d.directoryName);
        break;
      default:
        break;
    }
  }

 private:
  void addDirectoryName(const X509_NAME* name) {
    for (int i = 0; i < X509_NAME_entry_count(name); ++i) {
      const X509_NAME_ENTRY* entry = X509_NAME_get_entry(name, i);
      put(Place::kDirectory, ObjectText(X509_NAME_ENTRY_get_object(entry), true),
          TextOf(X509_NAME_ENTRY_get_data(entry)));
    }
  }

  void put(Place place, const std::string& oid, const std::string& utf8) {
    for (const AltNameField& field : AltNameFields()) {
      if (field.place != place || (!oid.empty() && oid != field.oid)) continue;
      char*& text = record_.*field.text;
      if (text == nullptr && !utf8.empty()) text = buffers_.copyText(AnsiFromUtf8(utf8));
      return;
    }
  }

  AltNameRecord& record_;
  Buffers& buffers_;
};

}  // namespace

const std::array<AltNameField, 15>& AltNameFields() {
  static constexpr std::array<AltNameField, 15> kFields = {{
      {&AltNameRecord::emailAddress, Place::kEmail, ""},
      {&AltNameRecord::DNS, Place::kDns, ""},
      {&AltNameRecord::URI, Place::kUri, ""},
      {&AltNameRecord::IP, Place::kIp, ""},
      {&AltNameRecord::organizationName, Place::kDirectory, "2.5.4.10"},
      {&AltNameRecord::registredAddress, Place::kDirectory, "2.5.4.26"},
      {&AltNameRecord::surname, Place::kDirectory, "2.5.4.4"},
      {&AltNameRecord::businessCategory, Place::kDirectory, "2.5.4.15"},
      {&AltNameRecord::telephoneNumber, Place::kDirectory, "2.5.4.20"},
      {&AltNameRecord::description, Place::kDirectory, "2.5.4.13"},
      {&AltNameRecord::account_number, Place::kOther, "2.999.1.1"},
      {&AltNameRecord::bank_id, Place::kOther, "2.999.1.2"},
      {&AltNameRecord::physicalDelivery, Place::kDirectory, "2.5.4.19"},
      {&AltNameRecord::exchange_address, Place::kOther, "2.999.1.3"},
      {&AltNameRecord::extraName, Place::kOther, "2.999.1.4"},
  }};
  return kFields;
}

bool FillAltName(AltNameRecord& record, const X509* certificate, int extensionNid, Buffers& buffers) {
  const GeneralNamesPtr names(
      static_cast<GENERAL_NAMES*>(X509_get_ext_d2i(certificate, extensionNid, nullptr, nullptr)));
  if (names == nullptr) return false;
  AltNameFiller filler(record, buffers);
  for (int i = 0; i < sk_GENERAL_NAME_num(names.get()); ++i) filler.add(sk_GENERAL_NAME_value(names.get(), i));
  return true;
}

void FreeAltName(AltNameRecord& record, Buffers& buffers) {
  for (const AltNameField& field : AltNameFields()) {
    buffers.release(record.*field.text);
    record.*field.text = nullptr;
  }
}

namespace {

using GeneralNamePtr = std::unique_ptr<GENERAL_NAME, FreeWith<GENERAL_NAME_free>>;
using ObjectPtr = std::unique_ptr<ASN1_OBJECT, FreeWith<ASN1_OBJECT_free>>;
using TypePtr = std::unique_ptr<ASN1_TYPE, FreeWith<ASN1_TYPE_free>>;

int GeneralNameType(Place place) {
  switch (place) {
    case Place::kEmail:
      return GEN_EMAIL;
    case Place::kDns:
      return GEN_DNS;
    case Place::kUri:
      return GEN_URI;
    default:
      return GEN_IPADD;
  }
}

GeneralNamePtr SimpleName(Place place, const std::string& utf8) {
  return GeneralNamePtr(a2i_GENERAL_NAME(nullptr, nullptr, nullptr, GeneralNameType(place), utf8.c_str(), 0));
}

GeneralNamePtr OtherName(const char* oid, const std::string& utf8) {
  GeneralNamePtr name(GENERAL_NAME_new());
  ObjectPtr type(OBJ_txt2obj(oid, 1));
  TypePtr value(ASN1_TYPE_new());
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

GeneralNamesPtr GeneralNamesOf(const AltNameRecord& record) {
  GeneralNamesPtr names(GENERAL_NAMES_new());
  NamePtr directory(X509_NAME_new());
  if (names == nullptr || directory == nullptr) Fail(kWinOutOfMemory);
  for (const AltNameField& field : AltNameFields()) {
    const std::string utf8 = Utf8FromAnsi(TextOrEmpty(record.*field.text));
    if (utf8.empty()) continue;
    if (field.place == Place::kDirectory) {
      const auto* bytes = reinterpret_cast<const unsigned char*>(utf8.data());
      const int length = static_cast<int>(utf8.size());
      if (X509_NAME_add_entry_by_txt(directory.get(), field.oid, MBSTRING_UTF8, bytes, length, -1, 0) != 1) {
        Fail(kRequestFailed);
      }
    } else {
      Push(names.get(), field.place == Place::kOther ? OtherName(field.oid, utf8) : SimpleName(field.place, utf8));
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
