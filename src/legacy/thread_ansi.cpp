#include "legacy/thread_ansi.h"

#include <new>

namespace legacy {

ThreadAnsi::ThreadAnsi(const wchar_t* text) {
  const wchar_t* wide = text ? text : L"";
  int size = WideCharToMultiByte(CP_THREAD_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
  if (size == 0) return;
  convert::AnsiString buffer(new (std::nothrow) char[size]());
  if (!buffer || WideCharToMultiByte(CP_THREAD_ACP, 0, wide, -1, buffer.get(), size, nullptr, nullptr) == 0) return;
  text_ = std::move(buffer);
}

}  // namespace legacy
