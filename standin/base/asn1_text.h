// Text of ASN.1 strings of any kind.
#pragma once

#include <string>

#include "standin/base/openssl_owners.h"

namespace standin {

/// UTF-8, up to an embedded zero; empty if the string has no text.
inline std::string TextOf(const ASN1_STRING* text) {
  if (text == nullptr) return {};
  unsigned char* utf8 = nullptr;
  const int length = ASN1_STRING_to_UTF8(&utf8, text);
  if (length < 0) return {};
  const OctetsPtr owner(utf8);
  const std::string whole(reinterpret_cast<char*>(utf8), static_cast<size_t>(length));
  return whole.substr(0, whole.find('\0'));
}

}  // namespace standin
