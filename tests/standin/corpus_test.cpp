// Ten thousand mutations of every kind of message, through memory, streams and files: none ends the process, takes
// long, is answered with "internal error", or is verified with another content.
#include "engine_test.h"
#include "mutations.h"

using namespace standin;

namespace {

constexpr int kMutations = 10000;

class Corpus : public EngineTest {
 protected:
  /// One call: its code, and what came out.
  struct Answer {
    int32_t code;
    Bytes out;
  };

  template <typename Call>
  void run(const std::vector<Bytes>& messages, Call call, int count = kMutations) {
    Mutations mutations(messages, 20261121);
    for (int i = 0; i < count; ++i) {
      const Bytes message = mutations.next();
      const uint64_t start = WorkDone();
      const Answer answer = call(message, i % 20);
      EXPECT_GT(2000u, WorkDone() - start) << i;
      EXPECT_NE(kInternal, answer.code) << i;
      if (answer.code == 0 && !content.empty()) {
        EXPECT_EQ(content, answer.out) << i;
      }
      if (HasFailure()) {
        WriteBytes(ScratchPath("failed"), message);
        return;
      }
    }
  }

  /// Of twenty messages one goes through files and five in pieces.
  void verifyAll(const std::vector<Bytes>& messages, const Bytes* data = nullptr) {
    const EngineSession session = open("alice", "roots");
    const std::string in = ScratchPath("corpus.in"), out = ScratchPath("corpus.out"), plain = ScratchPath("plain");
    if (data != nullptr) WriteBytes(plain, *data);
    for (const Bytes& message : messages) ASSERT_CODE(0, verify(session, message, data).code);
    run(messages, [&](const Bytes& message, int form) -> Answer {
      if (form == 0) {
        WriteBytes(in, message);
        const Verified verified =
            verifyFile(session, in, data == nullptr ? out : "", {}, data == nullptr ? nullptr : plain.c_str());
        return {verified.code, data == nullptr ? verified.out : *data};
      }
      if (form > 5) {
        const Verified verified = verify(session, message, data);
        return {verified.code, data == nullptr ? verified.out : *data};
      }
      return verifyInPieces(session, message, data, static_cast<size_t>(form) * 37);
    });
  }

  Answer verifyInPieces(EngineSession session, const Bytes& message, const Bytes* data, size_t size) {
    const VerifyParamRecord param{};
    const DataBlob_t start = data == nullptr ? DataBlob_t{} : BlobOf(message);
    EngineStream stream = nullptr;
    const int32_t begun = QUIVO_StrVerifyInitMem(session, &param, &start, &stream);
    if (begun != 0) return {begun, {}};
    const int32_t fed = inPieces(data == nullptr ? message : *data, size, [&](const DataBlob_t& piece) {
      return QUIVO_StrVerifyUpdateMem(session, &param, &stream, &piece);
    });
    DataBlob_t out{};
    VerifyResultRecord result{};
    const int32_t ended = QUIVO_StrVerifyFinalMem(session, &param, &stream, &out, &result);
    QUIVO_FreeVerifyResult(session, &result);
    const Bytes content = take(session, out);
    return {fed == 0 ? ended : fed, data == nullptr ? content : *data};
  }

  void decryptAll(const std::string& person, const std::vector<Bytes>& messages) {
    const EngineSession session = open(person, "roots");
    const std::string in = ScratchPath("corpus.in"), out = ScratchPath("corpus.out");
    const DecryptParamRecord param{1, nullptr, 4};
    for (const Bytes& message : messages) ASSERT_CODE(0, decrypt(session, message).code);
    run(messages, [&](const Bytes& message, int form) -> Answer {
      if (form > 5) {
        const Decrypted opened = decrypt(session, message);
        return {opened.code, opened.out};
      }
      DecryptResultRecord result{};
      if (form == 0) {
        WriteBytes(in, message);
        const int32_t code = QUIVO_DecryptFile(session, &param, in.c_str(), out.c_str(), &result);
        QUIVO_FreeDecryptResult(session, &result);
        return {code, ReadBytes(out)};
      }
      int32_t left = 0;
      EngineStream stream = nullptr;
      Bytes plain;
      const DataBlob_t none{};
      EXPECT_CODE(0, QUIVO_StrDecryptInitMem(session, &param, &none, &left, &stream));
      const int32_t fed = inPieces(message, static_cast<size_t>(form) * 37, [&](const DataBlob_t& piece) {
        DataBlob_t part{};
        const int32_t code = QUIVO_StrDecryptUpdateMem(session, &param, &stream, &piece, &left, &part);
        const Bytes bytes = take(session, part);
        plain.insert(plain.end(), bytes.begin(), bytes.end());
        return code;
      });
      const int32_t ended = QUIVO_StrDecryptFinalMem(session, &param, &stream, &result);
      QUIVO_FreeDecryptResult(session, &result);
      return {fed == 0 ? ended : fed, plain};
    });
  }

  /// The first code that is not 0.
  template <typename Take>
  static int32_t inPieces(const Bytes& bytes, size_t size, Take take) {
    int32_t code = 0;
    for (size_t start = 0; code == 0 && start < bytes.size(); start += size) {
      const Bytes piece(bytes.begin() + static_cast<ptrdiff_t>(start),
                        bytes.begin() + static_cast<ptrdiff_t>(std::min(start + size, bytes.size())));
      code = take(BlobOf(piece));
    }
    return code;
  }

  static std::vector<Bytes> small(const std::vector<std::string>& names) {
    std::vector<Bytes> messages;
    for (const std::string& name : names) messages.push_back(Material("small/" + name));
    return messages;
  }

  Bytes content = Material("small/data.bin");
};

/// Two suites, because suites run at the same time.
class SignatureCorpus : public Corpus {};
class EnvelopeCorpus : public Corpus {};

}  // namespace

TEST_F(SignatureCorpus, SignedMessages) {
  std::vector<Bytes> messages = small({"bob.p7s", "two.p7s", "noattr.p7s", "cades.p7s", "keyid.p7s", "pss.p7s"});
  messages.push_back(sign(open("bob"), kSendCertificate, content));
  verifyAll(messages);
}

TEST_F(SignatureCorpus, SignedStreams) { verifyAll(small({"stream.p7s", "armoured.pem"})); }

TEST_F(SignatureCorpus, DetachedSignatures) { verifyAll(small({"detached.p7s", "detached.noattr.p7s"}), &content); }

TEST_F(EnvelopeCorpus, EnvelopesForEcKeys) {
  // Nothing binds the content of an envelope.
  content.clear();
  decryptAll("bob", small({"bob.p7e", "both.p7e", "stream.p7e", "armoured.p7e"}));
}

TEST_F(EnvelopeCorpus, EnvelopesForRsaKeys) {
  content.clear();
  decryptAll("alice", small({"alice.p7e", "both.p7e", "oaep.p7e", "keyid.p7e"}));
}

TEST_F(EnvelopeCorpus, AuthenticatedEnvelopes) {
  decryptAll("bob", small({"gcm.p7e", "stream.gcm.p7e", "armoured.gcm.p7e"}));
}

TEST_F(SignatureCorpus, AdditionsToSignedMessagesCanBeRead) {
  content.clear();
  const EngineSession session = open("bob", "roots");
  const auto add = [&](const Bytes& existing, int) -> Answer {
    Bytes out;
    const int32_t code = trySign(session, kSendCertificate, nullptr, &existing, out);
    if (code != 0) return {code, {}};
    const int32_t verdict = verify(session, out).code;
    EXPECT_NE(kMessageDamaged, verdict);
    EXPECT_NE(kTooLarge, verdict);
    return {verdict, {}};
  };
  run(small({"two.p7s", "noattr.p7s", "stream.p7s"}), add, kMutations / 4);
}

#ifdef _WIN32
TEST_F(EnvelopeCorpus, Bundles) {
  content.clear();
  const EngineSession session = openIn("alice", CopyOfStore("roots", "corpus bundles"));
  const SignParamRecord param{};
  run({Material("messages/bundle.p7b"), small({"bob.p7s"})[0]}, [&](const Bytes& bytes, int) -> Answer {
    const DataBlob_t blob = BlobOf(bytes);
    return {QUIVO_ImportMem(session, &param, &blob), {}};
  });
}
#endif
