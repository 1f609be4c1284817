#include "convert/strings.h"

#include <cstdarg>
#include <cstdio>
#include <new>

#include "errors/result.h"

namespace convert {

HRESULT MeasureAnsi(BSTR text, int* size) {
  *size = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
  return *size == 0 ? errors::LastErrorResult() : S_OK;
}

HRESULT FillAnsi(BSTR text, char* buffer, int size) {
  return WideCharToMultiByte(CP_ACP, 0, text, -1, buffer, size, nullptr, nullptr) == 0 ? errors::LastErrorResult()
                                                                                       : S_OK;
}

HRESULT BstrToAnsi(BSTR text, AnsiString& out) {
  int size = 0;
  HRESULT hr = MeasureAnsi(text, &size);
  if (size == 0) return hr;
  AnsiString buffer(new (std::nothrow) char[size]());
  if (!buffer) return E_OUTOFMEMORY;
  hr = FillAnsi(text, buffer.get(), size);
  if (SUCCEEDED(hr)) out = std::move(buffer);
  return hr;
}

HRESULT MeasureWide(const char* text, int* size) {
  *size = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
  return *size == 0 ? errors::LastErrorResult() : S_OK;
}

HRESULT ReallocBstr(const char* text, int size, BSTR* out) {
  std::unique_ptr<wchar_t[]> wide(new (std::nothrow) wchar_t[size]);
  if (!wide) return E_OUTOFMEMORY;
  if (MultiByteToWideChar(CP_ACP, 0, text, -1, wide.get(), size) == 0) return errors::LastErrorResult();
  // TRUE alone is no proof: a platform that frees the former string first may answer it without a new one.
  return SysReAllocString(out, wide.get()) && *out ? S_OK : E_OUTOFMEMORY;
}

HRESULT AnsiToBstr(const char* text, BSTR* out) {
  int size = 0;
  HRESULT hr = MeasureWide(text, &size);
  return size == 0 ? hr : ReallocBstr(text, size, out);
}

void Format(char* buffer, size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  _vsnprintf(buffer, size, format, arguments);
  va_end(arguments);
  // Missing where the text fills the buffer.
  buffer[size - 1] = '\0';
}

}  // namespace convert
