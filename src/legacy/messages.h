// The message boxes of the legacy object, and the formatting of their texts.
#pragma once

#include <windows.h>

#include <cstdint>

namespace legacy {

/// The name under which the legacy object's windows appear.
constexpr char kLegacyCaption[] = "КОРВИС (x64)";

/// A formatted text and its terminator: the platform writes no more than 1024 characters.
constexpr size_t kMessageSize = 1024 + 1;

/// Formats with wvsprintfA; what is longer than the buffer is cut.
void FormatText(char (&text)[kMessageSize], const char* format, ...);

/// Room for the engine's text of a code; the last byte is kept from the engine, for the terminator.
constexpr uint32_t kErrorTextSize = 256;
/// The engine's text of a result code, NUL-terminated; empty when the engine writes none.
void ErrorText(int32_t code, char (&text)[kErrorTextSize + 1]);

/// A code that has no text: the message is shown without a second line.
constexpr int32_t kNoCode = -1;

/// Shows a failure over the foreground window: `format` filled with `argument`, and the engine's text of `code`
/// on the next line.
void ShowFailure(int32_t code, const char* format, const char* argument);

}  // namespace legacy
