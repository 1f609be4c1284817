// The interfaces and enumerations that scripts rely on, written down independently of the type library.
#pragma once

#include <string>
#include <vector>

struct InterfaceTable {
  std::string name;
  std::string iid;
  /// In the order of the virtual table:
  ///     "7 SignMem([in] ISignParam* param, ...)"       a method
  ///     "2 issuer BSTR @8"                             a property, with its place in the engine's record
  ///     "12 issuerAltName IAltName* by reference @80"  a property that is assigned by reference
  ///     "15 policies VARIANT @328 IPolicy"             an array: where its count stands, and what it holds
  std::vector<std::string> members;
};

struct EnumTable {
  std::string name;
  /// As they are declared: "Flag_Decrypt_Pkcs7=1, Flag_Decrypt_NoCache=2".
  std::string members;
};

extern const std::vector<InterfaceTable> kInterfaces;
extern const std::vector<EnumTable> kEnums;
