// Times: 32-bit seconds since 1970-01-01 UTC in records, DATE in properties.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>

namespace convert {

/// Seconds since 1970-01-01 UTC as a DATE. E_INVALIDARG when the time cannot be shown as a DATE.
HRESULT UnixTimeToDate(uint32_t seconds, DATE* date);

/// A DATE, rounded to the second and read as UTC, as seconds since 1970-01-01. E_INVALIDARG for a DATE
/// outside the automation range or before 1970.
HRESULT DateToUnixTime(DATE date, int64_t* seconds);

}  // namespace convert
