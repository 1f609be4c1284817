// Hashing, random numbers, Base64 and texts.
#include <set>

#include "engine_test.h"

using namespace standin;

namespace {

std::string Hex(const Bytes& bytes) {
  std::string text;
  for (uint8_t byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

class Hashing : public EngineTest {
 protected:
  std::string hashOfFile(const char* algorithm, const Bytes& data) {
    const std::string path = ScratchPath("to hash");
    WriteBytes(path, data);
    const EngineSession session = openMinimal();
    DataBlob_t hash{};
    EXPECT_CODE(0, QUIVO_StrHashFile(session, algorithm, path.c_str(), &hash));
    return Hex(take(session, hash));
  }
};

class Texts : public EngineTest {
 protected:
  static std::string textOf(int32_t code) {
    char text[512];
    EXPECT_CODE(0, QUIVO_GetErrorText(code, text, sizeof text));
    return text;
  }
};

constexpr char kSha256[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

}  // namespace

TEST_F(Hashing, NamedAlgorithmsAreKnown) {
  const Bytes abc = BytesOf("abc");
  EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72", hashOfFile("MD5", abc));
  EXPECT_EQ("a9993e364706816aba3e25717850c26c9cd0d89d", hashOfFile("SHA-1", abc));
  EXPECT_EQ("a9993e364706816aba3e25717850c26c9cd0d89d", hashOfFile("sha1", abc));
  EXPECT_EQ(kSha256, hashOfFile("SHA-256", abc));
  EXPECT_EQ(kSha256, hashOfFile("2.16.840.1.101.3.4.2.1", abc));
  EXPECT_EQ(kSha256, hashOfFile("", abc));
  EXPECT_EQ(96u, hashOfFile("SHA-384", abc).size());
  EXPECT_EQ(128u, hashOfFile("SHA512", abc).size());
}

TEST_F(Hashing, DefaultIsTheSameInMemoryAndFiles) {
  const EngineSession session = openMinimal();
  const Bytes abc = BytesOf("abc");
  const std::string path = ScratchPath("abc");
  WriteBytes(path, abc);
  const DataBlob_t in = BlobOf(abc);
  DataBlob_t hash{};
  ASSERT_CODE(0, QUIVO_HashMem(session, &in, &hash));
  EXPECT_EQ(kSha256, Hex(take(session, hash)));
  ASSERT_CODE(0, QUIVO_HashFile(session, path.c_str(), &hash));
  EXPECT_EQ(kSha256, Hex(take(session, hash)));
}

TEST_F(Hashing, UnknownAlgorithmAndMissingFileAreRefused) {
  const EngineSession session = openMinimal();
  DataBlob_t hash{};
  EngineStream stream = nullptr;
  EXPECT_CODE(kHashUnknown, QUIVO_StrHashFile(session, "SHA-257", "any", &hash));
  EXPECT_CODE(kHashUnknown, QUIVO_StrHashInitMem(session, "no such", &stream));
  EXPECT_CODE(2, QUIVO_HashFile(session, ScratchPath("missing").c_str(), &hash));
  EXPECT_CODE(kWinInvalidParameter, QUIVO_HashFile(session, nullptr, &hash));
}

TEST_F(Hashing, RandomBytesDiffer) {
  const EngineSession session = openMinimal();
  std::set<Bytes> seen;
  for (int i = 0; i < 20; ++i) {
    DataBlob_t random{};
    ASSERT_CODE(0, QUIVO_GenRandom(session, 16, &random));
    seen.insert(take(session, random));
  }
  EXPECT_EQ(20u, seen.size());
  EXPECT_EQ(16u, seen.begin()->size());
}

TEST_F(Hashing, RandomLengthsAreChecked) {
  const EngineSession session = openMinimal();
  DataBlob_t random{};
  EXPECT_CODE(0, QUIVO_GenRandom(session, 0, &random));
  EXPECT_EQ(nullptr, random.data);
  EXPECT_CODE(kLengthRefused, QUIVO_GenRandom(session, -1, &random));
  EXPECT_CODE(kLengthRefused, QUIVO_GenRandom(session, 0x7FFFFFFF, &random));
}

TEST_F(Hashing, Base64IsOneLine) {
  char text[400];
  const Bytes bytes(200, 0xFB);
  EXPECT_LE(0, QUIVO_EncodeMem(text, bytes.data(), 200));
  EXPECT_EQ(268u, std::string(text).size());
  EXPECT_EQ(std::string::npos, std::string(text).find('\n'));
  EXPECT_EQ(0, QUIVO_EncodeMem(text, bytes.data(), 0));
  EXPECT_STREQ("", text);
  EXPECT_GT(0, QUIVO_EncodeMem(nullptr, bytes.data(), 3));
  EXPECT_GT(0, QUIVO_EncodeMem(text, nullptr, 3));
}

TEST_F(Texts, EveryCodeHasATextOfItsOwn) {
  std::set<std::string> seen;
  for (int32_t code : {2, 5, 8, 87, 112, +kBadSession, +kWrongPin, +kKeyFileMissing, +kStoreUnreadable, +kBadSignature,
                       +kSignerUnknown, +kIssuerUnknown, +kExpired, +kRevoked, +kMessageDamaged, +kNotARecipient,
                       +kVerifiedWithRemarks, +kSelectionCancelled, +kOutsideValidity}) {
    const std::string text = textOf(code);
    EXPECT_TRUE(seen.insert(text).second) << text;
    EXPECT_GT(200u, text.size());
    EXPECT_EQ(std::string::npos, text.find("0x")) << text;
  }
}

TEST_F(Texts, RemarksHaveTextsOfTheirOwn) {
  std::set<std::string> seen;
  for (int32_t code : {+kVerifiedWithRemarks, +kWeakAlgorithm, +kRevocationUnclear, +kKeyPeriodOver, +kCrlUnusable}) {
    const std::string text = textOf(code);
    EXPECT_TRUE(seen.insert(text).second) << text;
    EXPECT_EQ(std::string::npos, text.find("0x")) << text;
  }
}

TEST_F(Texts, LowHalfOfACodeIsEnough) {
  EXPECT_EQ(textOf(kBadSignature), textOf(static_cast<int32_t>(0xE0690000 | kBadSignature)));
  EXPECT_EQ(textOf(kBadSignature), textOf(static_cast<int32_t>(0x80000000 | kBadSignature)));
  EXPECT_EQ(textOf(5), textOf(static_cast<int32_t>(0x80070005)));
  EXPECT_EQ(kBadSignature & 0xFFFF, +kBadSignature);
}

TEST_F(Texts, AreRussianInWindows1251) {
  EXPECT_EQ("\xCE\xF2\xEA\xE0\xE7\xE0\xED\xEE \xE2 \xE4\xEE\xF1\xF2\xF3\xEF\xE5.", textOf(5));
}

TEST_F(Texts, UnknownCodeIsNamedInAGeneralText) {
  EXPECT_NE(std::string::npos, textOf(0x12345678).find("12345678"));
  EXPECT_NE(std::string::npos, textOf(-1).find("FFFFFFFF"));
}

TEST_F(Texts, FitTheBuffer) {
  char text[8] = "1234567";
  EXPECT_CODE(0, QUIVO_GetErrorText(5, text, 4));
  EXPECT_EQ(3u, std::string(text).size());
  EXPECT_EQ('5', text[4]);
  EXPECT_CODE(0, QUIVO_GetErrorText(5, text, 1));
  EXPECT_STREQ("", text);
  EXPECT_CODE(kWinInvalidParameter, QUIVO_GetErrorText(5, nullptr, 4));
  EXPECT_CODE(kWinInvalidParameter, QUIVO_GetErrorText(5, text, 0));
}
