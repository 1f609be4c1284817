// Signatures with GOST keys: their algorithms, and what is refused.
#include "../element.h"
#include "../engine_test.h"

using namespace standin;

namespace {

constexpr char kStore[] = "gost/store";
constexpr char kDigest256[] = "1.2.643.7.1.1.2.2";
constexpr char kDigest512[] = "1.2.643.7.1.1.2.3";

class GostSignature : public EngineTest {
 protected:
  static Element& inside(Element& message) { return message.at({1, 0}); }
  static Element& signerOf(Element& message) { return inside(message).at({4, 0}); }

  EngineSession as(const std::string& person) { return open("gost/" + person, kStore); }
  Element signedBy(const std::string& person) { return ParseElement(sign(as(person), kSendCertificate, payload)); }
  int32_t verdictOn(const Element& message) {
    const Verified verified = verify(as("oleg"), message.encode());
    return verified.verdicts.empty() ? verified.code : verified.verdicts.at(0).status;
  }
  /// A signature of nina's whose certificate has this key.
  int32_t withKey(const Element& algorithm, const Bytes& bits) {
    Element message = signedBy("nina");
    inside(message).at({3, 0, 0, 6}) = Sequence({algorithm, BitString(bits)});
    const Verified verified = verify(open("gost/oleg", "gost/roots"), message.encode());
    return verified.verdicts.at(0).status;
  }

  const Bytes payload = BytesOf("some text");
};

Element KeyAlgorithm(const char* curve) {
  return Sequence({Oid("1.2.643.7.1.1.1.1"), Sequence({Oid(curve), Oid(kDigest256)})});
}

}  // namespace

TEST_F(GostSignature, AlgorithmsFollowFromTheKeyAndHaveNoParameters) {
  for (const auto& [person, digest, key] :
       {std::tuple("nina", kDigest256, "1.2.643.7.1.1.1.1"), std::tuple("oleg", kDigest512, "1.2.643.7.1.1.1.2")}) {
    Element message = signedBy(person);
    EXPECT_CODE(0, verdictOn(message)) << person;
    EXPECT_EQ(Sequence({Oid(digest)}).encode(), inside(message).at({1, 0}).encode()) << person;
    EXPECT_EQ(Sequence({Oid(digest)}).encode(), signerOf(message).at({2}).encode()) << person;
    EXPECT_EQ(Sequence({Oid(key)}).encode(), signerOf(message).at({4}).encode()) << person;
  }
}

TEST_F(GostSignature, ChangedContentAndSignatureAreRefused) {
  Element message = signedBy("nina");
  inside(message).at({2, 1, 0}).content[0] ^= 1;
  EXPECT_CODE(kBadSignature, verdictOn(message));
  message = signedBy("nina");
  signerOf(message).at({5}).content[7] ^= 1;
  EXPECT_CODE(kBadSignature, verdictOn(message));
}

TEST_F(GostSignature, DigestOfAnotherKeyIsRefused) {
  Element message = signedBy("nina");
  signerOf(message).at({2, 0}) = Oid(kDigest512);
  inside(message).at({1, 0, 0}) = Oid(kDigest512);
  EXPECT_CODE(kBadSignature, verdictOn(message));
}

TEST_F(GostSignature, AlgorithmOfAnotherKeyIsRefused) {
  for (const char* algorithm : {"1.2.643.7.1.1.1.2", "1.2.643.7.1.1.3.3", "1.2.840.113549.1.1.1"}) {
    Element message = signedBy("nina");
    signerOf(message).at({4, 0}) = Oid(algorithm);
    EXPECT_CODE(kBadSignature, verdictOn(message)) << algorithm;
  }
}

TEST_F(GostSignature, BothNamesOfItsAlgorithmAreRight) {
  Element message = signedBy("nina");
  signerOf(message).at({4, 0}) = Oid("1.2.643.7.1.1.3.2");
  EXPECT_CODE(0, verdictOn(message));
}

TEST_F(GostSignature, UnreadableKeyIsAStatus) {
  const Bytes point = Primitive(0x04, Bytes(64, 0x55)).encode();
  constexpr char kKnown[] = "1.2.643.7.1.2.1.1.1";
  EXPECT_CODE(kCertificateDamaged, withKey(KeyAlgorithm(kKnown), point));
  EXPECT_CODE(kCertificateDamaged, withKey(KeyAlgorithm(kKnown), {}));
  EXPECT_CODE(kCertificateDamaged, withKey(Sequence({Oid("1.2.643.7.1.1.1.1")}), point));
  EXPECT_CODE(kCertificateDamaged, withKey(Sequence({Oid("1.2.643.7.1.1.1.1"), Sequence({})}), point));
  EXPECT_CODE(kAlgorithmUnknown, withKey(KeyAlgorithm("1.2.643.99.7"), point));
}

TEST_F(GostSignature, OldAlgorithmIsARemarkUnlessTheStoreAdmitsIt) {
  const std::string folder = CopyOfStore(kStore, "old algorithm");
  const Bytes message = Material("gost/messages/rita.p7s");
  EXPECT_CODE(kWeakAlgorithm, verify(openIn("gost/oleg", folder), message).verdicts.at(0).status);
  WriteBytes(folder + "/policy.txt", BytesOf("admit weak-digests\n"));
  EXPECT_CODE(0, verify(openIn("gost/oleg", folder), message).verdicts.at(0).status);
}

TEST_F(GostSignature, EachSignerOfAMixedMessageIsJudgedAlone) {
  const std::string folder = CopyOfStore(kStore, "mixed");
  WriteBytes(folder + "/general.cer", Material("root.cer"));
  WriteBytes(folder + "/general.crl", Material("root.crl"));
  const EngineSession alice = openIn("alice", folder);
  Element message = ParseElement(
      addSignature(openIn("gost/nina", folder), kSendCertificate, nullptr, sign(alice, kSendCertificate, payload)));
  EXPECT_CODE(0, verify(alice, message.encode()).code);
  for (Element& signer : inside(message).at({4}).children) {
    if (signer.at({2, 0}).encode() == Oid(kDigest256).encode()) signer.at({5}).content[0] ^= 1;
  }
  for (const Verdict& verdict : verify(alice, message.encode()).verdicts) {
    const bool isAlice = verdict.subject.find("alice@") != std::string::npos;
    EXPECT_CODE(isAlice ? 0 : +kBadSignature, verdict.status) << verdict.subject;
  }
}
