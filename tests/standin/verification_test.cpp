// Verification: one verdict a signature, the demands of the caller, what comes out.
#include <algorithm>
#include <ctime>

#include "engine_test.h"

using namespace standin;

namespace {

constexpr uint32_t kDelete = 4;

class Verification : public EngineTest {
 protected:
  /// The one verdict on a message that this person signed.
  int32_t verdictOn(const std::string& person, const std::string& store = "store", VerifyParamRecord param = {}) {
    const Verified verified =
        verify(open("alice", store), sign(open(person), kSendCertificate, payload), nullptr, param);
    EXPECT_EQ(1u, verified.verdicts.size());
    EXPECT_CODE(verified.code, verified.verdicts.at(0).status);
    EXPECT_EQ(verified.code == 0 ? payload : Bytes(), verified.out);
    return verified.code;
  }

  Bytes signedByTwo() {
    return addSignature(open("bob"), kSendCertificate, nullptr, sign(open("alice"), kSendCertificate, payload));
  }

  const Bytes payload = BytesOf("text to verify");
};

VerifyParamRecord WithFlags(uint32_t flags) {
  VerifyParamRecord param{};
  param.flag = flags;
  return param;
}

}  // namespace

TEST_F(Verification, EachConditionHasItsOwnCode) {
  EXPECT_CODE(0, verdictOn("alice"));
  EXPECT_CODE(0, verdictOn("bob"));
  EXPECT_CODE(kRevoked, verdictOn("carol"));
  EXPECT_CODE(kExpired, verdictOn("dave"));
  EXPECT_CODE(kNotYetValid, verdictOn("erin"));
  EXPECT_CODE(kKeyUsageMissing, verdictOn("frank"));
  EXPECT_CODE(kIssuerUnknown, verdictOn("mallory"));
}

TEST_F(Verification, ValidityIsNotLookedAtWhenTheCallerSaysSo) {
  EXPECT_CODE(0, verdictOn("dave", "store", WithFlags(0x400)));
  EXPECT_CODE(0, verdictOn("erin", "store", WithFlags(0x400)));
  EXPECT_CODE(kRevoked, verdictOn("carol", "store", WithFlags(0x400)));
  EXPECT_CODE(kExpired, verdictOn("dave", "store", WithFlags(0x2000)));
}

TEST_F(Verification, OutdatedRevocationListIsARemark) {
  const EngineSession session = open("alice", "stale");
  const Verified verified = verify(session, sign(open("alice"), kSendCertificate, payload));
  EXPECT_CODE(kVerifiedWithRemarks, verified.code);
  EXPECT_CODE(kVerifiedWithRemarks, verified.verdicts.at(0).status);
}

TEST_F(Verification, StoreWithoutRevocationListsKnowsOfNoRevocation) { EXPECT_CODE(0, verdictOn("carol", "roots")); }

TEST_F(Verification, SignerAndSigningTimeAreReported) {
  const time_t before = std::time(nullptr);
  const Verified verified = verify(open("bob"), sign(open("bob"), kSendCertificate, payload));
  ASSERT_EQ(1u, verified.verdicts.size());
  EXPECT_LE(before - 1, static_cast<time_t>(verified.verdicts[0].time));
  EXPECT_GE(std::time(nullptr) + 1, static_cast<time_t>(verified.verdicts[0].time));
  EXPECT_EQ("emailAddress=bob@example.test, CN=Bob\\, Second, O=Example, C=RU", verified.verdicts[0].subject);
}

TEST_F(Verification, MaskDecidesWhatIsKnownOfTheSigner) {
  const EngineSession session = open("alice");
  const Bytes message = sign(session, kSendCertificate, payload);
  const DataBlob_t none{};
  const DataBlob_t blob = BlobOf(message);
  VerifyParamRecord param{};
  param.info = 0x10000;
  DataBlob_t out{};
  VerifyResultRecord result{};
  ASSERT_CODE(0, QUIVO_VerifyMem(session, &param, &none, &blob, &out, &result));
  ASSERT_EQ(1, result.count);
  const CertificateRecord& record = *result.entries[0].cert;
  EXPECT_EQ(0x10000u, record.fields);
  EXPECT_EQ(nullptr, record.subject);
  EXPECT_EQ(Material("alice.cer"), Bytes(record.certEncoded.data, record.certEncoded.data + record.certEncoded.len));
  take(session, out);
  QUIVO_FreeVerifyResult(session, &result);
  EXPECT_EQ(0, result.count);
}

TEST_F(Verification, WithoutAMaskTheSignerHasWhatAWindowShows) {
  const Bytes message = sign(open("alice"), kSendCertificate, payload);
  const DataBlob_t none{};
  const DataBlob_t blob = BlobOf(message);
  const VerifyParamRecord param{};
  DataBlob_t out{};
  VerifyResultRecord result{};
  const EngineSession session = open("bob");
  ASSERT_CODE(0, QUIVO_VerifyMem(session, &param, &none, &blob, &out, &result));
  const CertificateRecord& record = *result.entries[0].cert;
  EXPECT_EQ(0x10267u, record.fields);
  EXPECT_NE(nullptr, record.subject);
  EXPECT_EQ(Material("alice.cer"), Bytes(record.certEncoded.data, record.certEncoded.data + record.certEncoded.len));
  take(session, out);
  QUIVO_FreeVerifyResult(session, &result);
}

TEST_F(Verification, EverySignatureHasItsVerdict) {
  const Bytes both =
      addSignature(open("carol"), kSendCertificate, nullptr, sign(open("alice"), kSendCertificate, payload));
  const Verified verified = verify(open("bob"), both);
  EXPECT_CODE(kRevoked, verified.code);
  ASSERT_EQ(2u, verified.verdicts.size());
  for (const Verdict& verdict : verified.verdicts) {
    const bool isCarol = verdict.subject == "CN=Carol, C=RU";
    EXPECT_CODE(isCarol ? kRevoked : 0, verdict.status);
  }
}

TEST_F(Verification, EnoughGoodSignaturesMakeUpForBadOnes) {
  const Bytes both =
      addSignature(open("carol"), kSendCertificate, nullptr, sign(open("alice"), kSendCertificate, payload));
  VerifyParamRecord param = WithFlags(0x80);
  param.minsigns = 1;
  EXPECT_CODE(kVerifiedWithRemarks, verify(open("bob"), both, nullptr, param).code);
  param.minsigns = 2;
  EXPECT_CODE(kTooFewSignatures, verify(open("bob"), both, nullptr, param).code);
  EXPECT_CODE(0, verify(open("bob"), signedByTwo(), nullptr, param).code);
  param.minsigns = 3;
  EXPECT_CODE(kTooFewSignatures, verify(open("bob"), signedByTwo(), nullptr, param).code);
}

TEST_F(Verification, ContentComesOutWithoutSignatures) {
  VerifyParamRecord param = WithFlags(kDelete);
  param.nSignToDelete = -1;
  EXPECT_EQ(payload, verify(open("bob"), signedByTwo(), nullptr, param).out);
}

TEST_F(Verification, OneSignatureCanBeRemoved) {
  const EngineSession session = open("bob");
  const Bytes both = signedByTwo();
  const std::vector<Verdict> before = verify(session, both).verdicts;
  VerifyParamRecord param = WithFlags(kDelete);
  for (int32_t index = 0; index < 2; ++index) {
    param.nSignToDelete = index;
    const Verified left = verify(session, verify(session, both, nullptr, param).out);
    EXPECT_CODE(0, left.code);
    ASSERT_EQ(1u, left.verdicts.size());
    EXPECT_EQ(before[1 - static_cast<size_t>(index)].subject, left.verdicts[0].subject);
    EXPECT_EQ(payload, left.out);
  }
  param.nSignToDelete = 2;
  EXPECT_CODE(kNoSuchSignature, verify(session, both, nullptr, param).code);
}

TEST_F(Verification, RemovalOfTheLastSignatureLeavesTheContent) {
  VerifyParamRecord param = WithFlags(kDelete);
  EXPECT_EQ(payload, verify(open("bob"), sign(open("alice"), kSendCertificate, payload), nullptr, param).out);
}

TEST_F(Verification, DetachedSignatureCanLoseOneSigner) {
  const Bytes both = addSignature(open("bob"), kSendCertificate | kDetached, &payload,
                                  sign(open("alice"), kSendCertificate | kDetached, payload));
  const EngineSession session = open("bob");
  const Verified left = verify(session, verify(session, both, &payload, WithFlags(kDelete)).out, &payload);
  EXPECT_CODE(0, left.code);
  EXPECT_EQ(1u, left.verdicts.size());
}

TEST_F(Verification, DemandsOnTheCertificateAreChecked) {
  VerifyParamRecord param = WithFlags(8);
  param.keyUsage = 1 | 4;
  EXPECT_CODE(0, verdictOn("alice", "store", param));
  param.keyUsage = 1 | 32;
  EXPECT_CODE(kKeyUsageMissing, verdictOn("alice", "store", param));

  char policy[] = "1.2.643.99.2";
  char other[] = "1.2.643.99.9";
  PolicyRecord policies[2] = {};
  policies[0].oid = policy;
  policies[1].oid = other;
  param = WithFlags(0x10);
  param.policies = policies;
  param.policyCount = 1;
  EXPECT_CODE(0, verdictOn("alice", "store", param));
  param.policyCount = 2;
  EXPECT_CODE(kPolicyMissing, verdictOn("alice", "store", param));

  char usage[] = "1.2.643.99.1";
  char* usages[] = {usage, other};
  param = WithFlags(0x20);
  param.extKeyUsage = usages;
  param.extKeyUsageCount = 1;
  EXPECT_CODE(0, verdictOn("alice", "store", param));
  EXPECT_CODE(kExtKeyUsageMissing, verdictOn("bob", "store", param));
  param.extKeyUsageCount = 2;
  EXPECT_CODE(kExtKeyUsageMissing, verdictOn("alice", "store", param));
}

TEST_F(Verification, RequiredExtensionsAreChecked) {
  char oid[] = "1.2.643.99.4";
  const Bytes value = {0x0C, 3, 'a', 'b', 'c'};
  const Bytes otherValue = {0x0C, 3, 'a', 'b', 'd'};
  ExtensionRecord extension{};
  extension.oid = oid;
  VerifyParamRecord param{};
  param.extensions = &extension;
  param.extensionCount = 1;
  EXPECT_CODE(0, verdictOn("alice", "roots", param));
  extension.data = BlobOf(value);
  EXPECT_CODE(0, verdictOn("alice", "roots", param));
  extension.data = BlobOf(otherValue);
  EXPECT_CODE(kExtensionMissing, verdictOn("alice", "roots", param));
  extension.data = {};
  EXPECT_CODE(kExtensionMissing, verdictOn("bob", "roots", param));
}

TEST_F(Verification, AttachedCertificatesCanBeLeftOutOfAccount) {
  const Bytes message = sign(open("alice"), kSendCertificate, payload);
  EXPECT_CODE(kSignerUnknown, verify(open("bob", "roots"), message, nullptr, WithFlags(0x1000)).code);
  EXPECT_CODE(0, verify(open("bob", "store"), message, nullptr, WithFlags(0x1000)).code);
}

TEST_F(Verification, EveryFlippedBitIsRefused) {
  const EngineSession session = open("alice");
  const Bytes message = sign(session, 0, payload);
  ASSERT_CODE(0, verify(session, message).code);
  for (size_t i = 0; i < message.size(); ++i) {
    for (int bit = 0; bit < 8; ++bit) {
      // Capital and small letters in a name, primitive and constructed in a tag: neither changes what is meant.
      if (bit == 5) continue;
      // A version number binds nothing, and a wrong one is no reason to refuse.
      if (i >= 2 && message[i - 2] == 0x02 && message[i - 1] == 1 && message[i] == 1) continue;
      Bytes changed = message;
      changed[i] ^= static_cast<uint8_t>(1 << bit);
      EXPECT_NE(0, verify(session, changed).code) << "byte " << i << " of " << message.size() << ", bit " << bit;
    }
  }
}

TEST_F(Verification, LargeMessageInMemoryIsVerified) {
  const EngineSession session = open("alice");
  const Bytes data(20 * 1024 * 1024, 'x');
  const Verified verified = verify(session, sign(session, kSendCertificate, data));
  EXPECT_CODE(0, verified.code);
  EXPECT_EQ(data.size(), verified.out.size());
}

TEST_F(Verification, OpensslMessagesAreVerified) {
  const EngineSession session = open("bob");
  const Bytes data = Material("data.bin");
  for (const char* name : {"attached", "stream", "two", "keyid", "noattr", "nocerts"}) {
    const Verified verified = verify(session, Material(std::string("messages/") + name + ".p7s"));
    EXPECT_CODE(0, verified.code) << name;
    EXPECT_EQ(data, verified.out) << name;
    EXPECT_EQ(std::string(name) == "two" ? 2u : 1u, verified.verdicts.size()) << name;
  }
  EXPECT_CODE(0, verify(session, Material("messages/detached.p7s"), &data).code);
  EXPECT_CODE(kIssuerUnknown, verify(session, Material("messages/mallory.p7s")).code);
}

TEST_F(Verification, PssSignaturesAreVerified) {
  EXPECT_CODE(0, verify(open("bob"), Material("messages/pss.p7s")).code);
}

TEST_F(Verification, FilesGiveTheSameAsMemory) {
  const EngineSession session = open("bob");
  const Bytes data = Material("data.bin");
  const std::string out = ScratchPath("content");
  for (const char* name : {"attached", "stream", "two"}) {
    const Verified verified = verifyFile(session, MaterialPath(std::string("messages/") + name + ".p7s"), out);
    EXPECT_CODE(0, verified.code) << name;
    EXPECT_EQ(data, verified.out) << name;
  }
  const std::string dataPath = MaterialPath("data.bin");
  EXPECT_CODE(0, verifyFile(session, MaterialPath("messages/detached.p7s"), "", {}, dataPath.c_str()).code);
  VerifyParamRecord param = WithFlags(kDelete);
  const Verified rest = verifyFile(session, MaterialPath("messages/two.p7s"), out, param);
  EXPECT_EQ(1u, verify(session, rest.out).verdicts.size());
}

TEST_F(Verification, NullDeviceIsAnAbsentFile) {
  const Verified verified = verifyFile(open("bob"), MaterialPath("messages/attached.p7s"), "", {}, "NUL");
  EXPECT_CODE(0, verified.code);
  EXPECT_CODE(kContentMissing, verifyFile(open("bob"), MaterialPath("messages/detached.p7s"), "", {}, "nul").code);
}

TEST_F(Verification, NothingIsWrittenForABadSignature) {
  const EngineSession session = open("bob");
  Bytes message = Material("messages/attached.p7s");
  message[200] ^= 1;
  const std::string changed = ScratchPath("changed.bin");
  const std::string out = ScratchPath("must not appear");
  WriteBytes(changed, message);
  EXPECT_CODE(kBadSignature, verifyFile(session, changed, out).code);
  EXPECT_FALSE(FileExists(out));
}

TEST_F(Verification, OldOutputStaysWhenTheNewOneFails) {
  const EngineSession session = open("bob");
  const std::string out = ScratchPath("old");
  WriteBytes(out, BytesOf("old"));
  EXPECT_CODE(kIssuerUnknown, verifyFile(session, MaterialPath("messages/mallory.p7s"), out).code);
  EXPECT_EQ(BytesOf("old"), ReadBytes(out));
}

TEST_F(Verification, SignaturesOfAFileAreCounted) {
  const EngineSession session = open("bob");
  SignedInfoResultRecord info{};
  EXPECT_CODE(0, QUIVO_SignedInfoFile(session, MaterialPath("messages/two.p7s").c_str(), &info));
  EXPECT_EQ(2u, info.signatureCount);
  EXPECT_CODE(0, QUIVO_FreeSignedInfoResult(session, &info));
  EXPECT_CODE(kNotSigned, QUIVO_SignedInfoFile(session, MaterialPath("messages/two.p7e").c_str(), &info));
  EXPECT_EQ(0u, info.signatureCount);
  EXPECT_CODE(kMessageDamaged, QUIVO_SignedInfoFile(session, MaterialPath("data.bin").c_str(), &info));
  EXPECT_CODE(2, QUIVO_SignedInfoFile(session, ScratchPath("missing").c_str(), &info));
  EXPECT_CODE(kNotSigned, QUIVO_SignedInfoFile(session, MaterialPath("messages/bundle.p7b").c_str(), &info));
}
