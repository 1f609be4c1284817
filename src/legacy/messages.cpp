#include "legacy/messages.h"

#include <cstdarg>
#include <cstring>

#include "convert/strings.h"
#include "engine/functions.h"

namespace legacy {

void FormatText(char (&text)[kMessageSize], const char* format, ...) {
  std::memset(text, 0, kMessageSize);
  va_list arguments;
  va_start(arguments, format);
  wvsprintfA(text, format, arguments);
  va_end(arguments);
}

void ErrorText(int32_t code, char (&text)[kErrorTextSize + 1]) {
  std::memset(text, 0, sizeof(text));
  QUIVO_GetErrorText(code, text, kErrorTextSize);
}

void ShowFailure(int32_t code, const char* format, const char* argument) {
  char first[kMessageSize];
  FormatText(first, format, argument);
  char second[kMessageSize] = {};
  if (code != kNoCode) {
    char reason[kErrorTextSize + 1];
    ErrorText(code, reason);
    FormatText(second, "\n%s", reason);
  }
  char shown[kMessageSize + kMessageSize];
  convert::Format(shown, sizeof(shown), "%s%s", first, second);
  MessageBoxA(GetForegroundWindow(), shown, kLegacyCaption, MB_ICONHAND | MB_SETFOREGROUND);
}

}  // namespace legacy
