// HRESULTs in tests: compared as numbers, printed in hexadecimal.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <ostream>

struct Hresult {
  uint32_t value;
  explicit Hresult(HRESULT result) : value(static_cast<uint32_t>(result)) {}
  explicit Hresult(uint32_t result) : value(result) {}
  explicit Hresult(int result) : value(static_cast<uint32_t>(result)) {}
  bool operator==(const Hresult&) const = default;
};

inline void PrintTo(const Hresult& result, std::ostream* out) {
  *out << "0x" << std::hex << std::uppercase << std::setw(8) << std::setfill('0') << result.value << std::dec;
}

// Results of the module's own, in addition to those of the platform.
constexpr uint32_t kAlreadyInitialized = 0xE0680001;
constexpr uint32_t kAccessDenied = 0xE0690005;
constexpr uint32_t kOutOfMemory = 0xE069000E;
constexpr uint32_t kInvalidArgument = 0xE0690057;
/// What a conversion gives for a null BSTR where the result is not re-based.
constexpr uint32_t kUnmappedInvalidParameter = 0x80070057;

#define EXPECT_HR(expected, expression) EXPECT_EQ(Hresult(expected), Hresult(expression))
#define ASSERT_HR(expected, expression) ASSERT_EQ(Hresult(expected), Hresult(expression))
#define EXPECT_OK(expression) EXPECT_HR(S_OK, expression)
#define ASSERT_OK(expression) ASSERT_HR(S_OK, expression)
