// Strings between automation (BSTR) and the engine (NUL-terminated, system ANSI code page).
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <memory>

namespace convert {

/// A NUL-terminated ANSI string of the module's, allocated with array-new.
using AnsiString = std::unique_ptr<char[]>;

/// Converts `text` into a new string. A null BSTR fails with ERROR_INVALID_PARAMETER; characters that the
/// code page lacks become its default character. Failures: HRESULT_FROM_WIN32, E_OUTOFMEMORY.
HRESULT BstrToAnsi(BSTR text, AnsiString& out);

/// The two halves of BstrToAnsi, for a setter that must keep its old value until the first has succeeded:
/// the size in bytes with the terminator, and the conversion into a buffer of that size.
HRESULT MeasureAnsi(BSTR text, int* size);
HRESULT FillAnsi(BSTR text, char* buffer, int size);

/// Replaces `out` in place (what it held is freed) by the text of `text`. Failures: HRESULT_FROM_WIN32,
/// E_OUTOFMEMORY.
HRESULT AnsiToBstr(const char* text, BSTR* out);

/// The two halves of AnsiToBstr, for a caller that treats their failures differently: the size in
/// characters with the terminator, and the conversion of that many.
HRESULT MeasureWide(const char* text, int* size);
HRESULT ReallocBstr(const char* text, int size, BSTR* out);

/// Formats as the platform does, into a buffer of `size` bytes; what is longer is cut. std::snprintf would bring a
/// formatting of the compiler's own, a twelfth of the module.
[[gnu::format(printf, 3, 4)]] void Format(char* buffer, size_t size, const char* format, ...);

}  // namespace convert
