// Damaged and malicious input: a code with a text, soon, without a crash and without memory that stays.
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <functional>
#include <random>

#include "engine_test.h"

using namespace standin;

namespace {

using Attempt = std::function<int32_t(const Bytes&)>;

size_t PrivateMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

class Hostile : public EngineTest {
 protected:
  /// One call on such input: what it returns does not matter here, only that it does, with a text, and soon.
  static void survive(const Attempt& attempt, const Bytes& input) {
    const uint64_t start = WorkDone();
    const int32_t code = attempt(input);
    EXPECT_GT(2000u, WorkDone() - start);
    char text[512] = {};
    QUIVO_GetErrorText(code, text, sizeof text);
    EXPECT_NE(0, text[0]);
  }

  static void cuts(const Attempt& attempt, const Bytes& whole) {
    const size_t step = whole.size() / 400 + 1;
    for (size_t length = 0; length < whole.size(); length += step) {
      const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
      EXPECT_NE(0, attempt(cut)) << length;
      survive(attempt, cut);
    }
  }

  static void changes(const Attempt& attempt, const Bytes& whole, unsigned count) {
    std::mt19937 random(20240229);
    // What matters stands in the first and the last kilobytes.
    const size_t reach = std::min<size_t>(whole.size(), 2000);
    for (unsigned i = 0; i < count; ++i) {
      Bytes changed = whole;
      for (unsigned n = random() % 3 + 1; n != 0; --n) {
        const size_t offset = random() % reach;
        changed[random() % 2 == 0 ? offset : whole.size() - 1 - offset] = static_cast<uint8_t>(random());
      }
      survive(attempt, changed);
    }
  }

  /// Every length in the first bytes made enormous.
  static void largeLengths(const Attempt& attempt, const Bytes& whole, size_t reach = 200) {
    ASSERT_LT(reach + 8, whole.size());
    for (size_t at = 1; at < reach; ++at) {
      for (const uint8_t first : {0x80, 0x84, 0x87, 0x88, 0xFF}) {
        Bytes changed = whole;
        changed[at] = first;
        survive(attempt, changed);
        for (size_t i = at + 1; i < at + 8; ++i) changed[i] = 0xFF;
        survive(attempt, changed);
      }
    }
  }

  static void noise(const Attempt& attempt) {
    std::mt19937 random(42);
    for (unsigned i = 0; i < 300; ++i) {
      Bytes bytes(random() % 3000);
      for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
      if (bytes.size() > 4 && i % 2 == 0) bytes[0] = 0x30;
      EXPECT_NE(0, attempt(bytes));
      survive(attempt, bytes);
    }
  }

  static void all(const Attempt& attempt, const Bytes& whole) {
    const auto round = [&] {
      cuts(attempt, whole);
      changes(attempt, whole, 500);
      largeLengths(attempt, whole);
      noise(attempt);
    };
    const uint64_t start = WorkDone();
    round();
    EXPECT_LT(start, WorkDone()) << "the measure of work does not move";
    const size_t before = PrivateMemory();
    round();
    const size_t after = PrivateMemory();
    EXPECT_GT(before + 1024 * 1024, after);
  }

  Attempt verifying(EngineSession session) {
    return [this, session](const Bytes& message) { return verify(session, message).code; };
  }
  Attempt decrypting(EngineSession session) {
    return [this, session](const Bytes& message) { return decrypt(session, message).code; };
  }

  /// A small message, so that the test has time for many of its kind.
  const Bytes payload = Bytes(100, 'd');
};

/// Nested elements of no stated length.
Bytes Nested(size_t depth, uint8_t tag) {
  Bytes bytes;
  for (size_t i = 0; i < depth; ++i) bytes.insert(bytes.end(), {tag, 0x80});
  return bytes;
}

}  // namespace

TEST_F(Hostile, SignedMessages) {
  const EngineSession session = open("bob");
  all(verifying(session), addSignature(session, kSendCertificate, nullptr, sign(open("alice"), 8, payload)));
}

TEST_F(Hostile, OpensslStreams) {
  const Bytes stream = Material("messages/stream.p7s");
  cuts(verifying(open("bob")), stream);
  changes(verifying(open("bob")), stream, 300);
  const Bytes sealed = Material("messages/stream.p7e");
  cuts(decrypting(open("bob")), sealed);
  changes(decrypting(open("bob")), sealed, 300);
}

TEST_F(Hostile, EnvelopesForRsa) { all(decrypting(open("alice")), encrypt(open("bob"), payload, {"alice"})); }

TEST_F(Hostile, EnvelopesForEc) { all(decrypting(open("bob")), encrypt(open("bob"), payload, {"bob"})); }

TEST_F(Hostile, Certificates) {
  const EngineSession session = open("alice");
  const Attempt parse = [&](const Bytes& bytes) {
    const DataBlob_t blob = BlobOf(bytes);
    CertificateRecord record{};
    const int32_t code = QUIVO_ParseCert(session, &blob, 0x7FFFF, &record);
    QUIVO_FreeCert(session, &record);
    const VerifyCertParamRecord param{1, nullptr, 0x7FFFF};
    QUIVO_VerifyCert(session, &param, &blob, &record);
    QUIVO_FreeCert(session, &record);
    return code;
  };
  all(parse, Material("alice.cer"));
}

TEST_F(Hostile, RevocationLists) {
  const EngineSession session = openIn("alice", CopyOfStore("roots", "hostile lists"));
  const SignParamRecord addition{};
  const Attempt add = [&](const Bytes& bytes) {
    const DataBlob_t blob = BlobOf(bytes);
    return QUIVO_AddCRL(session, &addition, &blob);
  };
  const Bytes crl = Material("root.crl");
  cuts(add, crl);
  noise(add);
  largeLengths(add, crl);
}

TEST_F(Hostile, KeyFiles) {
  const std::string path = ScratchPath("hostile.p12");
  const Attempt openKeys = [&](const Bytes& bytes) {
    WriteBytes(path, bytes);
    EngineSession session = nullptr;
    const int32_t code = tryOpen(path, "12345678", MaterialPath("roots"), session);
    if (code == 0) close(session);
    return code;
  };
  const Bytes keys = Material("bob.p12");
  cuts(openKeys, keys);
  changes(openKeys, keys, 60);
  largeLengths(openKeys, keys, 40);
  noise(openKeys);
}

TEST_F(Hostile, KeyFileThatAsksForEndlessWork) {
  Bytes keys = Material("bob.p12");
  // The rounds of the file's checksum are the last number in it: 2048 becomes 2^31 - 1.
  const Bytes rounds = {0x02, 0x02, 0x08, 0x00};
  ASSERT_TRUE(std::equal(rounds.begin(), rounds.end(), keys.end() - 4));
  keys.resize(keys.size() - 4);
  const Bytes many = {0x02, 0x04, 0x7F, 0xFF, 0xFF, 0xFF};
  keys.insert(keys.end(), many.begin(), many.end());
  // Two more bytes: in the whole file, and in the sequence of the checksum.
  const size_t checksum = keys.size() - 6 - (0x41 - 4) - 2;
  ASSERT_EQ(0x30, keys.at(checksum));
  ASSERT_EQ(0x41, keys.at(checksum + 1));
  keys[checksum + 1] += 2;
  keys[3] = static_cast<uint8_t>(keys[3] + 2);
  const std::string path = ScratchPath("endless.p12");
  WriteBytes(path, keys);
  EngineSession session = nullptr;
  const uint64_t start = WorkDone();
  EXPECT_CODE(kKeyFileDamaged, tryOpen(path, "12345678", MaterialPath("roots"), session));
  EXPECT_GT(2000u, WorkDone() - start);
}

TEST_F(Hostile, DeepNesting) {
  const EngineSession session = open("alice");
  for (uint8_t tag : {0x30, 0x31, 0xA0, 0x24}) {
    EXPECT_NE(0, verify(session, Nested(1000000, tag)).code);
    EXPECT_NE(0, decrypt(session, Nested(1000000, tag)).code);
  }
  // Where nesting is allowed: inside the content.
  Bytes message = Material("messages/stream.p7s");
  const Bytes octets = {0x24, 0x80, 0x04};
  const auto content = std::search(message.begin(), message.end(), octets.begin(), octets.end());
  ASSERT_NE(message.end(), content);
  const Bytes deep = Nested(100000, 0x24);
  message.insert(content, deep.begin(), deep.end());
  EXPECT_CODE(kMessageDamaged, verify(session, message).code);
}

TEST_F(Hostile, BytesBehindAMessageAreRefused) {
  const EngineSession session = open("alice");
  Bytes signedMessage = sign(session, kSendCertificate, payload);
  signedMessage.push_back(0);
  EXPECT_CODE(kMessageDamaged, verify(session, signedMessage).code);
  Bytes sealed = encrypt(session, payload, {"alice"});
  sealed.push_back(0);
  EXPECT_CODE(kMessageDamaged, decrypt(session, sealed).code);
}

TEST_F(Hostile, StoreOfGarbageIsOpened) {
  const std::string folder = CopyOfStore("store", "garbage");
  std::mt19937 random(7);
  for (int i = 0; i < 20; ++i) {
    Bytes bytes(1000);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    bytes[0] = 0x30;
    WriteBytes(folder + "\\" + std::to_string(i) + (i % 2 == 0 ? ".cer" : ".key"), bytes);
  }
  const EngineSession session = openIn("alice", folder);
  EXPECT_CODE(0, verify(session, sign(session, kSendCertificate, payload)).code);
}
