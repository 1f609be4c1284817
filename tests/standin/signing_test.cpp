// Signing: forms, signers, what is sent along, what is refused.
#include "engine_test.h"

using namespace standin;

namespace {

class Signing : public EngineTest {
 protected:
  const Bytes payload = BytesOf("some text to sign");
};

}  // namespace

TEST_F(Signing, AttachedMessageGivesItsContentBack) {
  const Verified verified = verify(open("alice"), sign(open("alice"), kSendCertificate, payload));
  EXPECT_CODE(0, verified.code);
  EXPECT_EQ(payload, verified.out);
}

TEST_F(Signing, DetachedSignatureNeedsTheData) {
  const EngineSession session = open("alice");
  const Bytes signature = sign(session, kSendCertificate | kDetached, payload);
  EXPECT_CODE(0, verify(session, signature, &payload).code);
  EXPECT_CODE(kContentMissing, verify(session, signature).code);
  const Bytes other = BytesOf("some text to sigh");
  EXPECT_CODE(kBadSignature, verify(session, signature, &other).code);
}

TEST_F(Signing, NoBytesCanBeSigned) {
  const EngineSession session = open("alice");
  const Bytes message = sign(session, kSendCertificate, {});
  EXPECT_CODE(0, verify(session, message).code);
  const Bytes nothing;
  EXPECT_CODE(0, verify(session, sign(session, kDetached, {}), &nothing).code);
}

TEST_F(Signing, CertificateIsSentAlongOnlyWhenAsked) {
  const EngineSession alice = open("alice");
  const EngineSession stranger = open("bob", "roots");
  EXPECT_CODE(0, verify(stranger, sign(alice, kSendCertificate, payload)).code);
  const Verified without = verify(stranger, sign(alice, 0, payload));
  EXPECT_CODE(kSignerUnknown, without.code);
  ASSERT_EQ(1u, without.verdicts.size());
  EXPECT_EQ("", without.verdicts[0].subject);
  EXPECT_CODE(0, verify(open("bob"), sign(alice, 0, payload)).code);
}

TEST_F(Signing, SecondSignerIsAddedToADetachedSignature) {
  const Bytes first = sign(open("alice"), kSendCertificate | kDetached, payload);
  const Bytes both = addSignature(open("bob"), kSendCertificate | kDetached, &payload, first);
  const Verified verified = verify(open("carol"), both, &payload);
  EXPECT_CODE(0, verified.code);
  EXPECT_EQ(2u, verified.verdicts.size());
}

TEST_F(Signing, SecondSignerNeedsNoDataWhenTheMessageHasIt) {
  const Bytes first = sign(open("alice"), kSendCertificate, payload);
  const Bytes both = addSignature(open("bob"), kSendCertificate, nullptr, first);
  const Verified verified = verify(open("carol"), both);
  EXPECT_CODE(0, verified.code);
  EXPECT_EQ(2u, verified.verdicts.size());
  EXPECT_EQ(payload, verified.out);
}

TEST_F(Signing, SecondSignerMayTakeTheContentOut) {
  const Bytes first = sign(open("alice"), kSendCertificate, payload);
  const Bytes both = addSignature(open("bob"), kSendCertificate | kDetached, nullptr, first);
  EXPECT_CODE(kContentMissing, verify(open("carol"), both).code);
  EXPECT_EQ(2u, verify(open("carol"), both, &payload).verdicts.size());
}

TEST_F(Signing, OtherDataThanTheExistingSignatureCoversIsRefused) {
  const EngineSession session = open("alice");
  const Bytes other = BytesOf("something else");
  Bytes out;
  const Bytes attached = sign(session, kSendCertificate, payload);
  EXPECT_CODE(kContentMismatch, trySign(session, kSendCertificate, &other, &attached, out));
  const Bytes detached = sign(session, kSendCertificate | kDetached, payload);
  EXPECT_CODE(kContentMismatch, trySign(session, kSendCertificate | kDetached, &other, &detached, out));
  EXPECT_CODE(kContentMissing, trySign(session, kSendCertificate | kDetached, nullptr, &detached, out));
}

TEST_F(Signing, SignerIsChosenByIdentifier) {
  const EngineSession session = open("alice");
  Bytes out;
  const Bytes wrongHash(20, 1);
  const CertIdRecord wrong = ByHash(wrongHash);
  EXPECT_CODE(kOwnCertificateNotFound, trySign(session, 0, &payload, nullptr, out, &wrong));
  CertIdRecord incomplete{};
  incomplete.type = 1;
  EXPECT_CODE(kWinInvalidParameter, trySign(session, 0, &payload, nullptr, out, &incomplete));
  CertIdRecord notChosen{};
  notChosen.type = -1;
  EXPECT_CODE(0, trySign(session, 0, &payload, nullptr, out, &notChosen));

  const Bytes encoded = Material("alice.cer");
  const DataBlob_t blob = BlobOf(encoded);
  CertificateRecord record{};
  ASSERT_CODE(0, QUIVO_ParseCert(session, &blob, 0x7FFFF, &record));
  CertIdRecord byIssuer{};
  byIssuer.type = 0;
  byIssuer.issuerAndSerial = {record.issuer, record.serialNumber};
  EXPECT_CODE(0, trySign(session, 0, &payload, nullptr, out, &byIssuer));
  CertIdRecord byKey{};
  byKey.type = 1;
  byKey.keyId = record.keyId;
  EXPECT_CODE(0, trySign(session, 0, &payload, nullptr, out, &byKey));
  CertIdRecord byHash{};
  byHash.type = 2;
  byHash.certHash = record.certHash;
  EXPECT_CODE(0, trySign(session, 0, &payload, nullptr, out, &byHash));
  EXPECT_CODE(0, QUIVO_FreeCert(session, &record));
}

TEST_F(Signing, FilesAreSignedLikeMemory) {
  const EngineSession session = open("alice");
  const std::string data = ScratchPath("data");
  const std::string attached = ScratchPath("attached");
  const std::string detached = ScratchPath("detached");
  const std::string both = ScratchPath("both");
  WriteBytes(data, payload);
  const SignParamRecord withContent{kSendCertificate, nullptr};
  const SignParamRecord without{kSendCertificate | kDetached, nullptr};
  EXPECT_CODE(0, QUIVO_SignFile(session, &withContent, data.c_str(), nullptr, attached.c_str()));
  EXPECT_CODE(0, QUIVO_StrSignFile(session, &without, data.c_str(), nullptr, detached.c_str()));
  EXPECT_CODE(0, verify(session, ReadBytes(attached)).code);
  EXPECT_CODE(0, verify(session, ReadBytes(detached), &payload).code);
  EXPECT_CODE(0, QUIVO_SignFile(open("bob"), &withContent, nullptr, attached.c_str(), both.c_str()));
  EXPECT_EQ(2u, verify(session, ReadBytes(both)).verdicts.size());
  EXPECT_CODE(0, QUIVO_SignFile(open("bob"), &without, data.c_str(), detached.c_str(), both.c_str()));
  EXPECT_EQ(2u, verify(session, ReadBytes(both), &payload).verdicts.size());
}

TEST_F(Signing, FileMayBeReplacedByItsSignedForm) {
  const EngineSession session = open("alice");
  const std::string path = ScratchPath("in place");
  WriteBytes(path, payload);
  const SignParamRecord param{kSendCertificate, nullptr};
  EXPECT_CODE(0, QUIVO_SignFile(session, &param, path.c_str(), nullptr, path.c_str()));
  EXPECT_EQ(payload, verify(session, ReadBytes(path)).out);
}

TEST_F(Signing, FilesThatCannotBeUsedHaveTheSystemsCodes) {
  const EngineSession session = open("alice");
  const std::string data = ScratchPath("data");
  WriteBytes(data, payload);
  const SignParamRecord param{kSendCertificate, nullptr};
  const auto signFile = [&](const char* in, const char* out) {
    return QUIVO_SignFile(session, &param, in, nullptr, out);
  };
  EXPECT_CODE(2, signFile(ScratchPath("missing").c_str(), ScratchPath("out").c_str()));
  EXPECT_CODE(3, signFile(data.c_str(), ScratchPath("no folder\\out").c_str()));
  EXPECT_CODE(5, signFile(data.c_str(), ScratchPath("").c_str()));
  EXPECT_CODE(kWinInvalidParameter, signFile(data.c_str(), nullptr));
  EXPECT_CODE(kContentMissing, signFile(nullptr, ScratchPath("out").c_str()));
  EXPECT_FALSE(FileExists(ScratchPath("out")));
}

TEST_F(Signing, EmptyPathIsNotAnAbsentFile) {
  const EngineSession session = open("alice");
  const std::string data = ScratchPath("data"), out = ScratchPath("out");
  WriteBytes(data, payload);
  const SignParamRecord param{kSendCertificate, nullptr};
  EXPECT_CODE(3, QUIVO_SignFile(session, &param, data.c_str(), "", out.c_str()));
  EXPECT_CODE(3, QUIVO_SignFile(session, &param, "", nullptr, out.c_str()));
  EXPECT_FALSE(FileExists(out));
  EXPECT_CODE(0, QUIVO_SignFile(session, &param, data.c_str(), nullptr, out.c_str()));
  VerifyParamRecord verify{};
  VerifyResultRecord result{};
  EXPECT_CODE(3, QUIVO_VerifyFile(session, &verify, "", out.c_str(), nullptr, &result));
  QUIVO_FreeVerifyResult(session, &result);
  EXPECT_CODE(kWinInvalidParameter, QUIVO_VerifyFile(session, &verify, nullptr, out.c_str(), "", &result));
  QUIVO_FreeVerifyResult(session, &result);
}

TEST_F(Signing, NullDeviceIsAnAbsentFile) {
  const EngineSession session = open("alice");
  const std::string data = ScratchPath("data"), out = ScratchPath("out");
  WriteBytes(data, payload);
  const SignParamRecord param{kSendCertificate, nullptr};
  EXPECT_CODE(0, QUIVO_SignFile(session, &param, data.c_str(), "NUL", out.c_str()));
  VerifyParamRecord verify{};
  VerifyResultRecord result{};
  EXPECT_CODE(0, QUIVO_VerifyFile(session, &verify, "nul", out.c_str(), "NUL", &result));
  QUIVO_FreeVerifyResult(session, &result);
}
