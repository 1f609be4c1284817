// Keys and algorithms of signers: those that cannot be read or are not known, and those that are right for a key.
#include "element.h"
#include "engine_test.h"
#include "mutations.h"

using namespace standin;

namespace {

class Algorithms : public EngineTest {
 protected:
  static Element& inside(Element& message) { return message.at({1, 0}); }
  static Element& signerOf(Element& message) { return inside(message).at({4, 0}); }

  /// A signature of alice's whose certificate has this key.
  Verified withKey(const Element& key) {
    Element message = ParseElement(sign(open("alice"), kSendCertificate, payload));
    inside(message).at({3, 0, 0, 6}) = key;
    const Verified verified = verify(open("bob", "roots"), message.encode());
    EXPECT_EQ(1u, verified.verdicts.size());
    EXPECT_CODE(verified.code, verified.verdicts.at(0).status);
    return verified;
  }

  /// Both signatures with a part of bob's changed; alice's has to stay good.
  int32_t besideAGoodSigner(const Bytes& both, size_t member, const Element& algorithm) {
    Element message = ParseElement(both);
    Element& signers = inside(message).at({4});
    for (Element& signer : signers.children) {
      if (signer.at({4, 0}).encode() != Oid(kEcdsa).encode()) continue;
      signer.at({member}) = algorithm;
    }
    inside(message).at({1}).children.push_back(algorithm);
    int32_t ofBob = 0;
    for (const Verdict& verdict : verify(open("carol"), message.encode()).verdicts) {
      if (verdict.subject.find("alice") == std::string::npos) {
        ofBob = verdict.status;
      } else {
        EXPECT_CODE(0, verdict.status);
      }
    }
    return ofBob;
  }

  std::string digestOf(const std::string& person) {
    Element message = ParseElement(sign(open(person), kSendCertificate, payload));
    EXPECT_CODE(0, verify(open("bob"), message.encode()).code) << person;
    const Bytes digest = signerOf(message).at({2, 0}).encode();
    for (const char* known : {kSha256, kSha384, kSha512}) {
      if (digest == Oid(known).encode()) return known;
    }
    return {};
  }

  static constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
  static constexpr char kSha384[] = "2.16.840.1.101.3.4.2.2";
  static constexpr char kSha512[] = "2.16.840.1.101.3.4.2.3";
  static constexpr char kEcdsa[] = "1.2.840.10045.4.3.2";
  const Bytes payload = BytesOf("some text");
};

const Element kNull = Primitive(0x05, {});

Element Key(std::vector<Element> algorithm, const Bytes& bits) {
  return Sequence({Sequence(std::move(algorithm)), BitString(bits)});
}

Element RsaKey(const Bytes& bits) { return Key({Oid("1.2.840.113549.1.1.1"), kNull}, bits); }
Element EcKey(const Element& curve, const Bytes& bits) { return Key({Oid("1.2.840.10045.2.1"), curve}, bits); }

const Element kP256 = Oid("1.2.840.10045.3.1.7");

}  // namespace

TEST_F(Algorithms, KeyOfAnUnknownKindIsAStatus) {
  const Bytes bits(64, 0x55);
  EXPECT_CODE(kAlgorithmUnknown, withKey(Key({Oid("1.2.643.99.7")}, bits)).code);
  EXPECT_CODE(kAlgorithmUnknown, withKey(Key({Oid("2.16.840.1.101.3.4.3.18")}, Bytes(1952, 1))).code);
  EXPECT_CODE(kAlgorithmUnknown, withKey(EcKey(Oid("1.2.643.99.8"), bits)).code);
  EXPECT_CODE(kAlgorithmUnknown, withKey(Key({Oid("1.3.101.110")}, Bytes(32, 9))).code);
  EXPECT_CODE(kAlgorithmUnknown, withKey(Key({Oid("1.3.101.112")}, Bytes(32, 9))).code);
}

TEST_F(Algorithms, DamagedKeyIsAStatus) {
  Bytes outside(65, 1);
  outside[0] = 4;
  const Bytes number = Primitive(0x02, Bytes(128, 0x33)).encode();
  const Element zeros = Sequence({Primitive(0x02, {0}), Primitive(0x02, {0})});
  EXPECT_CODE(kCertificateDamaged, withKey(EcKey(kP256, outside)).code);
  EXPECT_CODE(kCertificateDamaged, withKey(EcKey(kP256, {})).code);
  EXPECT_CODE(kCertificateDamaged, withKey(EcKey(Sequence({}), outside)).code);
  EXPECT_CODE(kCertificateDamaged, withKey(EcKey(kNull, outside)).code);
  EXPECT_CODE(kCertificateDamaged, withKey(RsaKey({})).code);
  EXPECT_CODE(kCertificateDamaged, withKey(RsaKey(Bytes(270, 0x30))).code);
  EXPECT_CODE(kBadSignature, withKey(RsaKey(zeros.encode())).code);
  EXPECT_CODE(kCertificateDamaged, withKey(Key({Oid("1.2.840.113549.1.1.10"), kNull}, zeros.encode())).code);
  // Parameters that the certificate's issuer would have to lend.
  EXPECT_CODE(kCertificateDamaged, withKey(Key({Oid("1.2.840.10040.4.1")}, number)).code);
}

TEST_F(Algorithms, KeyOfAnotherKindDoesNotVerify) {
  Element alice = ParseElement(sign(open("alice"), kSendCertificate, payload));
  Element bob = ParseElement(sign(open("bob"), kSendCertificate, payload));
  EXPECT_CODE(kBadSignature, withKey(inside(bob).at({3, 0, 0, 6})).code);
  inside(bob).at({3, 0, 0, 6}) = inside(alice).at({3, 0, 0, 6});
  EXPECT_CODE(kBadSignature, verify(open("carol", "roots"), bob.encode()).verdicts.at(0).status);
}

TEST_F(Algorithms, UnknownOneDoesNotSpoilAGoodSigner) {
  const Bytes both =
      addSignature(open("bob"), kSendCertificate, nullptr, sign(open("alice"), kSendCertificate, payload));
  constexpr size_t kDigest = 2, kSignature = 4;
  for (const char* digest : {"1.2.643.99.9", "1.2.840.113549.2.4", "2.16.840.1.101.3.4.2.12", "1.0.10118.3.0.55"}) {
    EXPECT_CODE(kAlgorithmUnknown, besideAGoodSigner(both, kDigest, Sequence({Oid(digest)}))) << digest;
  }
  for (const char* signature : {"1.2.643.99.9", "2.16.840.1.101.3.4.3.18"}) {
    EXPECT_CODE(kAlgorithmUnknown, besideAGoodSigner(both, kSignature, Sequence({Oid(signature)}))) << signature;
  }
  EXPECT_CODE(kBadSignature, besideAGoodSigner(both, kSignature, Sequence({Oid("1.2.840.10045.4.3.3")})));
}

TEST_F(Algorithms, StrangeKeysInTheStoreHarmNobody) {
  const std::string folder = CopyOfStore("store", "strange keys");
  Element certificate = ParseElement(Material("alice.cer"));
  const Bytes message = sign(open("alice"), 0, payload);
  for (const Element& key : StrangeKeys()) {
    certificate.at({0, 6}) = key;
    const Bytes encoded = certificate.encode();
    WriteBytes(folder + "/alice.cer", encoded);
    const EngineSession session = openIn("bob", folder);
    FindParamRecord find{};
    find.info = 0x7FFFF;
    for (const uint32_t flags : {0, 1, 2}) {
      find.flag = flags;
      FindResultRecord found{};
      EXPECT_CODE(0, QUIVO_FindCert(session, &find, &found));
      QUIVO_FreeFindResult(session, &found);
    }
    EXPECT_NE(0, verify(session, message).code);
    const DataBlob_t blob = BlobOf(encoded);
    const VerifyCertParamRecord param{1, nullptr, 0x7FFFF};
    CertificateRecord record{};
    EXPECT_NE(0, QUIVO_VerifyCert(session, &param, &blob, &record));
    CertificateRecord receiver{};
    receiver.certEncoded = blob;
    const EncryptParamRecord encrypt{0x30, nullptr, 1, &receiver};
    const DataBlob_t data = BlobOf(payload);
    DataBlob_t out{};
    const int32_t code = QUIVO_EncryptMem(session, &encrypt, &data, &out);
    EXPECT_TRUE(code == 0 || code == kRecipientUnsuitable) << EngineCode{code}.value;
    take(session, out);
    close(session);
  }
}

TEST_F(Algorithms, UnknownMaskOfPssIsUnknown) {
  Element message = ParseElement(Material("messages/pss.p7s"));
  signerOf(message).at({4, 1, 1, 0, 0}) = Oid("1.2.643.99.9");
  EXPECT_CODE(kAlgorithmUnknown, verify(open("bob"), message.encode()).code);
}

TEST_F(Algorithms, DigestFitsTheKey) {
  EXPECT_EQ(kSha256, digestOf("alice"));
  EXPECT_EQ(kSha256, digestOf("bob"));
  EXPECT_EQ(kSha384, digestOf("heidi"));
  EXPECT_EQ(kSha512, digestOf("ivan"));
}

TEST_F(Algorithms, PssKeySignsPss) {
  EXPECT_EQ(kSha256, digestOf("grace"));
  Element message = ParseElement(sign(open("grace"), kSendCertificate, payload));
  EXPECT_EQ(Oid("1.2.840.113549.1.1.10").encode(), signerOf(message).at({4, 0}).encode());
  // The salt is as long as the digest: other programs accept no other length.
  EXPECT_EQ(Bytes{32}, signerOf(message).at({4, 1, 2, 0}).content);
}

TEST_F(Algorithms, Ed25519IsRefused) {
  Bytes out;
  EXPECT_CODE(kAlgorithmUnknown, trySign(open("judy"), kSendCertificate, &payload, nullptr, out));
}

TEST_F(Algorithms, OtherDataIsRefusedWhateverTheDigestOfTheExistingSignature) {
  const Bytes existing = sign(open("alice"), kSendCertificate | kDetached, payload);
  const Bytes other = BytesOf("other text");
  Bytes out;
  EXPECT_CODE(kContentMismatch, trySign(open("heidi"), kSendCertificate | kDetached, &other, &existing, out));
  EXPECT_CODE(0, trySign(open("heidi"), kSendCertificate | kDetached, &payload, &existing, out));
}
