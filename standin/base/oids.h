// The object identifiers of message kinds and attributes that this engine writes or looks for, as whole DER elements.
#pragma once

#include <array>
#include <cstdint>

namespace standin {

inline constexpr std::array<uint8_t, 11> kOidData = {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07, 0x01};
inline constexpr std::array<uint8_t, 11> kOidSignedData = {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86,
                                                           0xF7, 0x0D, 0x01, 0x07, 0x02};
inline constexpr std::array<uint8_t, 11> kOidEnvelopedData = {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86,
                                                              0xF7, 0x0D, 0x01, 0x07, 0x03};

}  // namespace standin
