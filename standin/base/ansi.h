// Conversions between the system ANSI code page, which callers use, and UTF-8, which libcrypto uses; hexadecimal text.
#pragma once

#include <string>
#include <string_view>

#include "standin/base/bytes.h"

namespace standin {

/// Characters that the ANSI code page lacks become its default character.
std::string AnsiFromUtf8(std::string_view text);
std::string Utf8FromAnsi(std::string_view text);
std::wstring WideFromUtf8(std::string_view text);

/// Capital hexadecimal digits without separators.
std::string HexOf(ByteView bytes);

/// Lower case by the rules of Unicode; the argument and the result are UTF-8.
std::string FoldCase(std::string_view utf8);

/// A null pointer is an empty text.
inline std::string TextOrEmpty(const char* text) { return text == nullptr ? std::string() : std::string(text); }

}  // namespace standin
