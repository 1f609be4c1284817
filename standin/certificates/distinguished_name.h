// Names from their text form.
#pragma once

#include <string>

#include "standin/base/openssl_owners.h"

namespace standin {

/// Parses "CN=..., O=..., C=..." (UTF-8; short, long or dotted attribute names; quoted or escaped values), the most
/// specific attribute first. Null if the syntax is wrong.
NamePtr NameFromText(const std::string& text);

}  // namespace standin
