// What programs of the console have in common: their arguments, and lines in the language of who reads them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

enum class Language { kRussian, kEnglish };

/// The text in one of the two languages.
inline const wchar_t* Choose(Language language, const wchar_t* russian, const wchar_t* english) {
  return language == Language::kRussian ? russian : english;
}

struct Arguments {
  Language language = Language::kRussian;
  std::vector<std::wstring> given;
};

/// Takes the language (/lang:en, /lang:ru) and `wanted` other arguments. Returns false if there are more, fewer, or
/// unknown options.
bool ReadArguments(int count, wchar_t** values, size_t wanted, Arguments* arguments);

/// Prints the text as it is; a console takes letters, a file or a pipe the console's code page.
void Write(const std::wstring& text);
void Print(const std::wstring& line);
