// Texts of the kit: UTF-8 inside, UTF-16 towards the platform, and whatever the programs print.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace proof {

std::string Utf8(const std::wstring& text);
std::wstring Wide(const std::string& text);
/// What a program printed: UTF-8 if it is that, else in the code page of consoles. Without carriage returns.
std::string FromConsole(const std::string& printed);

/// `text` for HTML and XML; characters that XML does not allow become question marks.
std::string Escaped(const std::string& text);
std::string Replaced(std::string text, const std::string& what, const std::string& by);
std::string Quoted(const std::string& text);
std::string Trimmed(const std::string& text);
std::vector<std::string> Split(const std::string& text, char separator);
/// As printf formats it.
std::string Format(const char* format, ...) __attribute__((format(__MINGW_PRINTF_FORMAT, 1, 2)));

bool WriteWholeFile(const std::wstring& path, const std::string& content);

/// Windows' own text for an error, with its number.
std::string ErrorText(unsigned long error);

}  // namespace proof
