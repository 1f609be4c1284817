#include <windows.h>

#include "checks.h"

namespace check {
namespace {

/// The text of a code in a buffer of that size.
std::string TextOf(Kit& kit, int32_t code, size_t size) {
  Guarded buffer(size);
  std::memset(buffer.data(), 0x55, size);
  kit.engine.QUIVO_GetErrorText(code, reinterpret_cast<char*>(buffer.data()), static_cast<uint32_t>(size));
  const void* end = std::memchr(buffer.data(), 0, size);
  Expect(end != nullptr, "the text of " + Hex(code) + " has no end within " + std::to_string(size) + " bytes");
  return reinterpret_cast<const char*>(buffer.data());
}

void CheckErrorTexts(Kit& kit) {
  kit.check("GetErrorText keeps within the buffer", "a text with its end, in 1 to 512 bytes", [&] {
    for (size_t size : {1, 2, 3, 16, 255, 256, 512}) {
      for (int32_t code : {0, 5, 87, 0x12345678, static_cast<int32_t>(0xE0700019)}) TextOf(kit, code, size);
    }
  });
  kit.check("GetErrorText knows every number", "a text that is not empty", [&] {
    for (const int32_t code :
         std::initializer_list<int32_t>{0, 1, 2, 5, 8, 87, 0x7FFFFFFF, static_cast<int32_t>(0xE0700019),
                                        static_cast<int32_t>(0xE072008A), E_FAIL, E_INVALIDARG, -1}) {
      Expect(!TextOf(kit, code, 256).empty(), "no text for " + Hex(code));
    }
  });
  kit.report.check("the low half of a code has its text", "one text for both", [&] {
    const Session session = kit.openMinimal();
    InText algorithm("no such algorithm");
    Out<EngineStream> stream;
    const int32_t code = kit.engine.QUIVO_StrHashInitMem(session, algorithm.get(), stream.get());
    Fails("StrHashInitMem", code);
    if (code < 0 && HRESULT_FACILITY(code) != FACILITY_WIN32) return "the code reaches callers whole: " + Hex(code);
    Expect(TextOf(kit, code, 512) == TextOf(kit, code & 0xFFFF, 512), "two texts for " + Hex(code));
    return "one text for " + Hex(code);
  });
}

std::string Base64(const Bytes& bytes) {
  static const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t three = 0;
    for (size_t j = 0; j < 3; ++j) three = three << 8 | (i + j < bytes.size() ? bytes[i + j] : 0);
    for (size_t j = 0; j < 4; ++j)
      text += i + j > bytes.size() ? '=' : kLetters[three >> (18 - 6 * static_cast<unsigned>(j)) & 63];
  }
  return text;
}

}  // namespace

void CheckTexts(Kit& kit) {
  CheckErrorTexts(kit);
  kit.check("EncodeMem writes Base64 in one line", "within (4n + 4) / 3 + 4 bytes", [&] {
    for (size_t size : {0, 1, 2, 3, 4, 47, 48, 49, 57, 58, 1000, 4096}) {
      const Bytes bytes = Payload(size);
      InBytes source(bytes);
      Guarded text((4 * size + 4) / 3 + 4);
      std::memset(text.data(), 0x55, text.size());
      const int32_t code = kit.engine.QUIVO_EncodeMem(reinterpret_cast<char*>(text.data()),
                                                      size == 0 ? nullptr : source.data(), static_cast<uint32_t>(size));
      if (code == HRESULT_FROM_WIN32(ERROR_NOT_SUPPORTED)) throw NotSupported{};
      Expect(code >= 0, "EncodeMem: " + Hex(code) + " for " + std::to_string(size) + " bytes");
      Expect(std::memchr(text.data(), 0, text.size()) != nullptr, "a text without an end");
      Expect(reinterpret_cast<const char*>(text.data()) == Base64(bytes),
             "another text for " + std::to_string(size) + " bytes");
    }
  });
}

}  // namespace check
