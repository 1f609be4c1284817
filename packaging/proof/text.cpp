#include "text.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>

namespace proof {
namespace {

std::wstring Decoded(const std::string& text, UINT codePage, DWORD flags) {
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  std::wstring wide(MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0), L'\0');
  MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

}  // namespace

std::string Utf8(const std::wstring& text) {
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  std::string narrow(WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr);
  return narrow;
}

std::wstring Wide(const std::string& text) { return Decoded(text, CP_UTF8, 0); }

std::string FromConsole(const std::string& printed) {
  const bool isUtf8 = printed.empty() || !Decoded(printed, CP_UTF8, MB_ERR_INVALID_CHARS).empty();
  return Replaced(isUtf8 ? printed : Utf8(Decoded(printed, GetOEMCP(), 0)), "\r", "");
}

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char character : text) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\t':
      case '\n':
        escaped += character;
        break;
      default:
        escaped += static_cast<unsigned char>(character) < 0x20 ? '?' : character;
    }
  }
  // Not characters, although UTF-8 has bytes for them.
  return Replaced(Replaced(escaped, "\xEF\xBF\xBE", "?"), "\xEF\xBF\xBF", "?");
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
  return text;
}

std::string Quoted(const std::string& text) {
  std::string quoted(1, '"');
  quoted += text;
  quoted += '"';
  return quoted;
}

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (size_t end = text.find(separator); end != std::string::npos; end = text.find(separator, start)) {
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  parts.push_back(text.substr(start));
  return parts;
}

std::string Format(const char* format, ...) {
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

bool WriteWholeFile(const std::wstring& path, const std::string& content) {
  FILE* file = _wfopen(path.c_str(), L"wb");
  if (file == nullptr) return false;
  const bool written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
  return std::fclose(file) == 0 && written;
}

std::string ErrorText(unsigned long error) {
  wchar_t text[512] = L"";
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text, 512, nullptr);
  return Format("error 0x%lX ", error) + Trimmed(Utf8(text));
}

}  // namespace proof
