#include "legacy/addresses.h"

#include <cstring>

#include "quivocom.h"

namespace legacy {
namespace {

/// The member of the alternative name that an address of `kind` belongs to; null for an unknown kind.
char** MemberFor(const char* kind, AltNameRecord& name) {
  if (_stricmp(kind, "EX") == 0) return &name.exchange_address;
  if (_stricmp(kind, "SMTP") == 0) return &name.emailAddress;
  if (_stricmp(kind, "NOTES") == 0) return &name.extraName;
  return nullptr;
}

FindParamRecord SearchForEncryption(uint32_t templateFields) {
  FindParamRecord search{};
  search.flag = Flag_Find_Simple;
  search.certTemplate.fields = templateFields;
  search.certTemplate.keyUsage = Keyusage_DigitalSignature | Keyusage_KeyEncipherment;
  search.info = Field_CertHash;
  return search;
}

}  // namespace

RecipientAddress AddressList::takeLast() {
  char* entry = rest_;
  if (char* semicolon = std::strrchr(rest_, ';')) {
    *semicolon = '\0';
    entry = semicolon + 1;
  } else {
    rest_ += std::strlen(rest_);
  }
  char* colon = std::strchr(entry, ':');
  if (!colon) return {entry, nullptr};
  *colon = '\0';
  return {entry, colon + 1};
}

FindParamRecord SearchFor(const RecipientAddress& address) {
  FindParamRecord search = SearchForEncryption(Field_KeyUsage | Field_SubjectAltName);
  char** member = MemberFor(address.kind, search.certTemplate.subjectAltName);
  if (!member) return SearchBySelection();
  *member = address.address;
  return search;
}

FindParamRecord SearchBySelection() {
  FindParamRecord search = SearchForEncryption(0);
  LetUserSelect(search);
  return search;
}

void LetUserSelect(FindParamRecord& search) {
  search.flag = Flag_Find_SelectUI;
  search.certTemplate.fields = Field_KeyUsage;
}

}  // namespace legacy
