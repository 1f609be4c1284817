// Streams: the same results as in one piece, whatever the pieces; order and ownership of streams.
#include <algorithm>
#include <functional>

#include "engine_test.h"

using namespace standin;

namespace {

class Streams : public EngineTest {
 protected:
  void SetUp() override {
    for (int i = 0; i < 5000; ++i) payload.push_back(static_cast<uint8_t>(i * 7));
  }

  /// Hands the bytes over in pieces of that size.
  static void inPieces(const Bytes& bytes, size_t size, const std::function<void(const DataBlob_t&)>& takePiece) {
    for (size_t start = 0; start < bytes.size(); start += size) {
      const size_t count = std::min(size, bytes.size() - start);
      takePiece({static_cast<uint32_t>(count), const_cast<uint8_t*>(bytes.data()) + start});
    }
  }

  Bytes signInPieces(EngineSession session, uint32_t flags, const Bytes* existing, const Bytes& data, size_t size) {
    const SignParamRecord param{flags, nullptr};
    const DataBlob_t start = existing == nullptr ? DataBlob_t{} : BlobOf(*existing);
    EngineStream stream = nullptr;
    EXPECT_CODE(0, QUIVO_StrSignInitMem(session, &param, &start, &stream));
    inPieces(data, size, [&](const DataBlob_t& piece) {
      EXPECT_CODE(0, QUIVO_StrSignUpdateMem(session, &param, &stream, &piece));
    });
    DataBlob_t out{};
    EXPECT_CODE(0, QUIVO_StrSignFinalMem(session, &param, &stream, &out));
    EXPECT_EQ(nullptr, stream);
    return take(session, out);
  }

  Verified verifyInPieces(EngineSession session, const Bytes& start, const Bytes& rest, size_t size) {
    const VerifyParamRecord param{};
    const DataBlob_t startBlob = start.empty() ? DataBlob_t{} : BlobOf(start);
    EngineStream stream = nullptr;
    EXPECT_CODE(0, QUIVO_StrVerifyInitMem(session, &param, &startBlob, &stream));
    inPieces(rest, size, [&](const DataBlob_t& piece) {
      EXPECT_CODE(0, QUIVO_StrVerifyUpdateMem(session, &param, &stream, &piece));
    });
    Verified verified{};
    DataBlob_t out{};
    VerifyResultRecord result{};
    verified.code = QUIVO_StrVerifyFinalMem(session, &param, &stream, &out, &result);
    verified.verdicts.resize(static_cast<size_t>(result.count));
    verified.out = take(session, out);
    QUIVO_FreeVerifyResult(session, &result);
    return verified;
  }

  Bytes encryptInPieces(EngineSession session, const std::vector<std::string>& people, size_t size) {
    Receivers receivers(people);
    const EncryptParamRecord param = receivers.param();
    EngineStream stream = nullptr;
    EXPECT_CODE(0, QUIVO_StrEncryptInitMem(session, &param, &stream));
    Bytes message;
    const auto add = [&](DataBlob_t& out) {
      const Bytes piece = take(session, out);
      message.insert(message.end(), piece.begin(), piece.end());
    };
    inPieces(payload, size, [&](const DataBlob_t& piece) {
      DataBlob_t out{};
      EXPECT_CODE(0, QUIVO_StrEncryptUpdateMem(session, &param, &stream, &piece, &out));
      add(out);
    });
    DataBlob_t out{};
    EXPECT_CODE(0, QUIVO_StrEncryptFinalMem(session, &param, &stream, &out));
    add(out);
    return message;
  }

  Decrypted decryptInPieces(EngineSession session, const Bytes& message, size_t size) {
    const DecryptParamRecord param{1, nullptr, 4};
    const DataBlob_t none{};
    int32_t left = -1;
    EngineStream stream = nullptr;
    EXPECT_CODE(0, QUIVO_StrDecryptInitMem(session, &param, &none, &left, &stream));
    EXPECT_EQ(0, left);
    Decrypted decrypted{};
    inPieces(message, size, [&](const DataBlob_t& piece) {
      DataBlob_t out{};
      left = -1;
      decrypted.code = QUIVO_StrDecryptUpdateMem(session, &param, &stream, &piece, &left, &out);
      EXPECT_EQ(0, left);
      const Bytes plain = take(session, out);
      decrypted.out.insert(decrypted.out.end(), plain.begin(), plain.end());
    });
    DecryptResultRecord result{};
    decrypted.code = QUIVO_StrDecryptFinalMem(session, &param, &stream, &result);
    decrypted.status = result.status;
    if (result.cert.subject != nullptr) decrypted.sender = result.cert.subject;
    QUIVO_FreeDecryptResult(session, &result);
    return decrypted;
  }

  Bytes payload;
};

constexpr size_t kPieceSizes[] = {1, 3, 64, 4096, 100000};

}  // namespace

TEST_F(Streams, AttachedSignatureIsMadeOfPieces) {
  const EngineSession session = open("alice");
  for (size_t size : kPieceSizes) {
    const Verified verified = verify(session, signInPieces(session, kSendCertificate, nullptr, payload, size));
    EXPECT_CODE(0, verified.code);
    EXPECT_EQ(payload, verified.out);
  }
}

TEST_F(Streams, SecondSignatureIsAddedInPieces) {
  const Bytes first = sign(open("alice"), kSendCertificate | kDetached, payload);
  const Bytes both = signInPieces(open("bob"), kSendCertificate | kDetached, &first, payload, 1000);
  EXPECT_EQ(2u, verify(open("bob"), both, &payload).verdicts.size());
  const Bytes attached = sign(open("alice"), kSendCertificate, payload);
  const Bytes bothAttached = signInPieces(open("bob"), kSendCertificate, &attached, {}, 1);
  EXPECT_EQ(2u, verify(open("bob"), bothAttached).verdicts.size());
  EXPECT_EQ(payload, verify(open("bob"), signInPieces(open("bob"), 0, &attached, payload, 999)).out);
}

TEST_F(Streams, DetachedSignatureIsVerifiedOverPieces) {
  const EngineSession session = open("alice");
  const Bytes signature = sign(session, kSendCertificate | kDetached, payload);
  for (size_t size : kPieceSizes) EXPECT_CODE(0, verifyInPieces(session, signature, payload, size).code);
  Bytes changed = payload;
  changed[4000] ^= 1;
  EXPECT_CODE(kBadSignature, verifyInPieces(session, signature, changed, 100).code);
}

TEST_F(Streams, AttachedMessageIsVerifiedInPieces) {
  const EngineSession session = open("alice");
  const Bytes message = sign(session, kSendCertificate, payload);
  for (size_t size : kPieceSizes) {
    const Verified verified = verifyInPieces(session, {}, message, size);
    EXPECT_CODE(0, verified.code);
    EXPECT_EQ(payload, verified.out);
  }
  EXPECT_CODE(0, verifyInPieces(session, message, {}, 1).code);
  const Bytes start(message.begin(), message.begin() + 77);
  const Bytes rest(message.begin() + 77, message.end());
  EXPECT_EQ(payload, verifyInPieces(session, start, rest, 500).out);
}

TEST_F(Streams, OpensslStreamIsVerifiedInPieces) {
  const EngineSession session = open("bob");
  const Bytes message = Material("messages/stream.p7s");
  for (size_t size : {1, 7, 1000}) {
    EXPECT_EQ(Material("data.bin"), verifyInPieces(session, {}, message, size).out);
  }
}

TEST_F(Streams, MessageIsEncryptedInPieces) {
  const EngineSession session = open("carol");
  for (size_t size : kPieceSizes) {
    const Bytes message = encryptInPieces(session, {"alice", "bob"}, size);
    EXPECT_EQ(payload, decrypt(open("alice"), message).out) << size;
    EXPECT_EQ(payload, decrypt(open("bob"), message).out) << size;
  }
}

TEST_F(Streams, MessageIsDecryptedInPieces) {
  const EngineSession session = open("alice");
  const Bytes whole = encrypt(open("carol"), payload, {"alice"});
  const Bytes stream = encryptInPieces(open("carol"), {"alice"}, 333);
  for (size_t size : kPieceSizes) {
    for (const Bytes& message : {whole, stream}) {
      const Decrypted opened = decryptInPieces(session, message, size);
      EXPECT_CODE(0, opened.code);
      EXPECT_EQ(payload, opened.out) << size;
    }
  }
}

TEST_F(Streams, AuthenticatedMessagesAreWrittenAndReadInPieces) {
  const std::string folder = CopyOfStore("store", "authenticated streams");
  WriteBytes(folder + "\\policy.txt", BytesOf("encrypt authenticated\n"));
  const Bytes message = encryptInPieces(openIn("carol", folder), {"alice"}, 333);
  const EngineSession session = open("alice");
  for (size_t size : kPieceSizes) EXPECT_EQ(payload, decryptInPieces(session, message, size).out) << size;
  EXPECT_EQ(Material("data.bin"), decryptInPieces(session, Material("messages/stream.gcm.p7e"), 999).out);
}

TEST_F(Streams, NothingOfAnAuthenticatedMessageComesOutBeforeItsTag) {
  const EngineSession session = open("alice");
  Bytes message = Material("messages/gcm.p7e");
  message[message.size() - 1000] ^= 1;
  const Decrypted changed = decryptInPieces(session, message, 4096);
  EXPECT_CODE(kDecryptionFailed, changed.code);
  EXPECT_EQ(Bytes(), changed.out);
}

TEST_F(Streams, ArmourIsReadInPieces) {
  for (size_t size : {1, 7, 1000}) {
    EXPECT_EQ(Material("data.bin"), verifyInPieces(open("bob"), {}, Material("messages/attached.pem"), size).out);
    EXPECT_EQ(Material("data.bin"), decryptInPieces(open("bob"), Material("messages/two.pem"), size).out);
    EXPECT_EQ(Material("small/data.bin"), decryptInPieces(open("bob"), Material("small/armoured.gcm.p7e"), size).out);
  }
}

TEST_F(Streams, CutMessageIsRefusedInTheEnd) {
  const EngineSession session = open("alice");
  Bytes message = encrypt(session, payload, {"alice"});
  message.resize(message.size() - 20);
  EXPECT_CODE(kMessageDamaged, decryptInPieces(session, message, 512).code);
  Bytes signature = sign(session, kSendCertificate, payload);
  signature.resize(signature.size() - 20);
  EXPECT_CODE(kMessageDamaged, verifyInPieces(session, {}, signature, 512).code);
}

TEST_F(Streams, HashIsMadeOfPieces) {
  const EngineSession session = openMinimal();
  const DataBlob_t all = BlobOf(payload);
  DataBlob_t expected{};
  ASSERT_CODE(0, QUIVO_HashMem(session, &all, &expected));
  EngineStream stream = nullptr;
  ASSERT_CODE(0, QUIVO_StrHashInitMem(session, "SHA-256", &stream));
  inPieces(payload, 17, [&](const DataBlob_t& piece) { QUIVO_StrHashUpdateMem(session, &stream, &piece); });
  DataBlob_t hash{};
  ASSERT_CODE(0, QUIVO_StrHashFinalMem(session, &stream, &hash));
  EXPECT_EQ(take(session, expected), take(session, hash));
}

TEST_F(Streams, UnknownAndEndedStreamsAreRefused) {
  const EngineSession session = open("alice");
  const SignParamRecord param{0, nullptr};
  const DataBlob_t none{};
  DataBlob_t out{};
  EngineStream stream = nullptr;
  EXPECT_CODE(kBadStream, QUIVO_StrSignUpdateMem(session, &param, &stream, &none));
  EXPECT_CODE(kBadStream, QUIVO_StrSignFinalMem(session, &param, &stream, &out));
  ASSERT_CODE(0, QUIVO_StrSignInitMem(session, &param, &none, &stream));
  EngineStream copy = stream;
  EXPECT_CODE(0, QUIVO_StrSignFinalMem(session, &param, &stream, &out));
  take(session, out);
  EXPECT_CODE(kBadStream, QUIVO_StrSignFinalMem(session, &param, &copy, &out));
  EXPECT_CODE(kBadStream, QUIVO_StrSignUpdateMem(session, &param, &copy, &none));
  EXPECT_CODE(kWinInvalidParameter, QUIVO_StrSignUpdateMem(session, &param, nullptr, &none));
}

TEST_F(Streams, StreamOfAnotherKindIsRefusedAndLivesOn) {
  const EngineSession session = open("alice");
  const SignParamRecord param{0, nullptr};
  const DataBlob_t none{};
  EngineStream stream = nullptr;
  ASSERT_CODE(0, QUIVO_StrSignInitMem(session, &param, &none, &stream));
  DataBlob_t out{};
  EXPECT_CODE(kBadStream, QUIVO_StrHashFinalMem(session, &stream, &out));
  EXPECT_CODE(kBadStream, QUIVO_StrHashUpdateMem(session, &stream, &none));
  EXPECT_CODE(kBadStream, QUIVO_StrSignUpdateMem(open("bob"), &param, &stream, &none));
  EXPECT_CODE(0, QUIVO_StrSignFinalMem(session, &param, &stream, &out));
  take(session, out);
}

TEST_F(Streams, AbandonedStreamsEndWithTheirSession) {
  EngineSession session = open("alice");
  Receivers receivers({"alice"});
  const EncryptParamRecord encryptParam = receivers.param();
  EngineStream streams[2] = {};
  ASSERT_CODE(0, QUIVO_StrEncryptInitMem(session, &encryptParam, &streams[0]));
  ASSERT_CODE(0, QUIVO_StrHashInitMem(session, nullptr, &streams[1]));
  close(session);
  const DataBlob_t none{};
  EXPECT_CODE(kBadSession, QUIVO_StrHashUpdateMem(session, &streams[1], &none));
}

TEST_F(Streams, GostSignaturesAreMadeAndReadInPieces) {
  const EngineSession session = open("gost/nina", "gost/store");
  for (const size_t size : {size_t{7}, size_t{4096}}) {
    const Bytes message = signInPieces(session, kSendCertificate, nullptr, payload, size);
    const Verified verified = verifyInPieces(session, {}, message, size);
    EXPECT_CODE(0, verified.code);
    EXPECT_EQ(payload, verified.out);
  }
}

TEST_F(Streams, GostEnvelopesAreMadeAndReadInPieces) {
  for (const char* policy : {"encrypt magma\n", "encrypt authenticated\n", "encrypt gost28147\n"}) {
    const std::string folder = CopyOfStore("gost/store", std::string("stream") + policy[8]);
    WriteBytes(folder + "/policy.txt", BytesOf(policy));
    const EngineSession session = openIn("gost/nina", folder);
    for (const size_t size : {size_t{7}, size_t{4096}}) {
      const Bytes message = encryptInPieces(session, {"gost/nina"}, size);
      EXPECT_EQ(payload, decryptInPieces(session, message, size).out) << policy;
    }
  }
}
