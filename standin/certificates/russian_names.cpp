#include "standin/certificates/russian_names.h"

#include <openssl/asn1.h>
#include <openssl/objects.h>

#include "standin/base/ansi.h"

namespace standin {
namespace {

struct RussianName {
  const char* russian;
  const char* latin;
};

/// The longer before those that they begin with.
constexpr RussianName kNames[] = {{"ИНН ЮЛ", "INNLE"},  {"ИННЮЛ", "INNLE"}, {"ИНН", "INN"},
                                  {"ОГРНИП", "OGRNIP"}, {"ОГРН", "OGRN"},   {"СНИЛС", "SNILS"}};

/// Attributes of digits, with their fixed lengths.
void AddNumber(const char* oid, const char* name, int length) {
  int type = OBJ_txt2nid(oid);
  if (type == NID_undef) type = OBJ_create(oid, name, name);
  if (type != NID_undef) ASN1_STRING_TABLE_add(type, length, length, B_ASN1_NUMERICSTRING, STABLE_NO_MASK);
}

}  // namespace

void AddRussianNames() {
  AddNumber("1.2.643.100.4", "INNLE", 10);
  AddNumber("1.2.643.100.5", "OGRNIP", 15);
}

void ForgetRussianNames() { ASN1_STRING_TABLE_cleanup(); }

std::string WithLatinNames(std::string text) {
  for (const RussianName& name : kNames) {
    const std::string russian = FoldCase(name.russian) + "=";
    for (size_t at = text.find(russian); at != std::string::npos; at = text.find(russian, at + 1)) {
      const bool isName = at == 0 || text[at - 1] == ',' || text[at - 1] == '+';
      if (isName) text.replace(at, russian.size(), FoldCase(name.latin) + "=");
    }
  }
  return text;
}

const char* LatinName(const std::string& type) {
  for (const RussianName& name : kNames) {
    if (type == name.russian) return name.latin;
  }
  return type.c_str();
}

}  // namespace standin
