#include "standin/base/ansi.h"

#include <windows.h>

namespace standin {
namespace {

std::wstring ToWide(UINT codePage, std::string_view text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<size_t>(needed), L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string FromWide(UINT codePage, std::wstring_view text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(needed), '\0');
  WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), needed, nullptr, nullptr);
  return bytes;
}

}  // namespace

std::string AnsiFromUtf8(std::string_view text) { return FromWide(CP_ACP, ToWide(CP_UTF8, text)); }
std::string Utf8FromAnsi(std::string_view text) { return FromWide(CP_UTF8, ToWide(CP_ACP, text)); }
std::wstring WideFromUtf8(std::string_view text) { return ToWide(CP_UTF8, text); }

std::string HexOf(ByteView bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

std::string FoldCase(std::string_view utf8) {
  std::wstring wide = ToWide(CP_UTF8, utf8);
  if (!wide.empty()) CharLowerBuffW(wide.data(), static_cast<DWORD>(wide.size()));
  return FromWide(CP_UTF8, wide);
}

}  // namespace standin
