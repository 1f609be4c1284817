// What the portable pieces use of the platform, for their native build.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>

// NOLINTBEGIN(readability-identifier-naming): the platform's names

using HRESULT = int32_t;

#define S_OK static_cast<HRESULT>(0)
#define E_OUTOFMEMORY static_cast<HRESULT>(0x8007000E)
#define E_INVALIDARG static_cast<HRESULT>(0x80070057)
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_PATH_NOT_FOUND 3
#define ERROR_ACCESS_DENIED 5
#define ERROR_INVALID_DATA 13
#define FAILED(hr) ((hr) < 0)
#define HRESULT_FROM_WIN32(error) static_cast<HRESULT>(0x80070000u | (error))

using __time64_t = int64_t;
#define _timezone timezone

inline void _tzset() { tzset(); }
inline tm* _gmtime64(const __time64_t* seconds) { return gmtime(seconds); }
/// As the platform's, which converts nothing before 1970.
inline __time64_t _mktime64(tm* time) {
  const time_t seconds = mktime(time);
  return seconds < 0 ? -1 : seconds;
}
/// As the platform's, an assignment without a value removes the variable.
inline int _putenv(const std::string& assignment) {
  const size_t equals = assignment.find('=');
  const std::string name = assignment.substr(0, equals), value = assignment.substr(equals + 1);
  return value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
}

using DWORD = uint32_t;
using HANDLE = void*;
using LONG64 = int64_t;
inline LONG64 InterlockedAdd64(volatile LONG64* value, LONG64 more) {
  return __atomic_add_fetch(value, more, __ATOMIC_SEQ_CST);
}
inline int CloseHandle(HANDLE file) { return std::fclose(static_cast<FILE*>(file)); }
inline int DeleteFileA(const char* path) { return std::remove(path); }

#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu
#define FILE_ATTRIBUTE_DIRECTORY 0x10
/// Only asked of folders here.
inline DWORD GetFileAttributesA(const char* path) {
  FILE* found = std::fopen(path, "r");
  if (found == nullptr) return INVALID_FILE_ATTRIBUTES;
  std::fclose(found);
  return FILE_ATTRIBUTE_DIRECTORY;
}

using CRITICAL_SECTION = std::recursive_mutex;
inline void InitializeCriticalSection(CRITICAL_SECTION*) {}
inline void DeleteCriticalSection(CRITICAL_SECTION*) {}
inline void EnterCriticalSection(CRITICAL_SECTION* section) { section->lock(); }
inline void LeaveCriticalSection(CRITICAL_SECTION* section) { section->unlock(); }

// NOLINTEND(readability-identifier-naming)
