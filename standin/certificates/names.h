// Names, serial numbers and key identifiers as the texts of records, and their comparison.
#pragma once

#include <string>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// "CN=..., O=..." or "commonName=..., organizationName=...".
enum class NameForm { kShort, kQualified };

/// UTF-8, the most specific attribute first.
std::string NameText(const X509_NAME* name, NameForm form = NameForm::kShort);

/// Whether `text` (UTF-8) is the name, in any form and either order. Case and spaces around separators do not count.
bool IsNameText(const X509_NAME* name, const std::string& text);
/// Whether `part` occurs in one of the forms of the name.
bool NameContains(const X509_NAME* name, const std::string& part);

/// Capital hexadecimal digits, two per byte.
std::string SerialText(const ASN1_INTEGER* serial);
std::string SerialText(const X509* certificate);
/// The digits of a hexadecimal number in capitals, without separators and leading zeros.
std::string HexDigits(const std::string& text);
/// Whether both texts are the same hexadecimal number; separators and leading zeros do not count.
bool IsSameHex(const std::string& left, const std::string& right);

/// The subject key identifier; without the extension, SHA-1 of the public key.
Bytes KeyIdOf(const X509* certificate);

}  // namespace standin
