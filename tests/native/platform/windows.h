// What the portable pieces use of the platform, for their native build.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>

// NOLINTBEGIN(readability-identifier-naming): the platform's names

using HRESULT = int32_t;

#define S_OK static_cast<HRESULT>(0)
#define E_OUTOFMEMORY static_cast<HRESULT>(0x8007000E)
#define E_INVALIDARG static_cast<HRESULT>(0x80070057)
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

// NOLINTEND(readability-identifier-naming)
