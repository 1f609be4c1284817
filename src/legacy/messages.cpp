#include "legacy/messages.h"

#include <cstdarg>
#include <cstring>

#include "engine/functions.h"

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
  char message[kMessageSize];
  FormatText(message, format, argument);
  char shown[kMessageSize + kMessageSize] = {};
  std::strcpy(shown, message);
  if (code != kNoCode) {
    char reason[kErrorTextSize + 1];
    ErrorText(code, reason);
    FormatText(message, "\n%s", reason);
    std::strcat(shown, message);
  }
  MessageBoxA(GetForegroundWindow(), shown, kLegacyCaption, MB_ICONHAND | MB_SETFOREGROUND);
}
