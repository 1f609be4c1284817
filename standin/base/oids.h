// The object identifiers of message kinds, as DER elements.
#pragma once

#include <array>
#include <cstdint>

namespace standin {

constexpr std::array<uint8_t, 11> Pkcs7Oid(uint8_t kind) {
  return {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07, kind};
}
inline constexpr auto kOidData = Pkcs7Oid(1);
inline constexpr auto kOidSignedData = Pkcs7Oid(2);
inline constexpr auto kOidEnvelopedData = Pkcs7Oid(3);
inline constexpr std::array<uint8_t, 13> kOidAuthEnvelopedData = {0x06, 0x0B, 0x2A, 0x86, 0x48, 0x86, 0xF7,
                                                                  0x0D, 0x01, 0x09, 0x10, 0x01, 0x17};
/// The attribute behind the content in which GOST ciphers state their code.
inline constexpr std::array<uint8_t, 11> kOidContentMac = {0x06, 0x09, 0x2A, 0x85, 0x03, 0x07,
                                                           0x01, 0x00, 0x06, 0x01, 0x01};

}  // namespace standin
