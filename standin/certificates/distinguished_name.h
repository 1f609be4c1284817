// Names from their text form.
#pragma once

#include <string>

#include "standin/base/openssl_owners.h"

namespace standin {

/// Reads "CN=..., O=..., C=..." (UTF-8; attribute names short, long or dotted; values may be quoted or have escapes).
/// The first attribute is the most specific one, as in NameText. Null when the text is no name.
NamePtr NameFromText(const std::string& text);

}  // namespace standin
