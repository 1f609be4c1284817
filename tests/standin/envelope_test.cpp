// Encryption and decryption: recipients, keys, refusals, and the operations that also sign or verify.
#include "engine_test.h"

using namespace standin;

namespace {

class Envelopes : public EngineTest {
 protected:
  const Bytes payload = BytesOf("text to be kept secret");
};

}  // namespace

TEST_F(Envelopes, EveryRecipientCanOpen) {
  const Bytes message = encrypt(open("carol"), payload, {"alice", "bob"});
  EXPECT_EQ(payload, decrypt(open("alice"), message).out);
  EXPECT_EQ(payload, decrypt(open("bob"), message).out);
}

TEST_F(Envelopes, NobodyElseCanOpen) {
  const Bytes message = encrypt(open("carol"), payload, {"alice", "bob"});
  const Decrypted refused = decrypt(open("carol"), message);
  EXPECT_CODE(kNotARecipient, refused.code);
  EXPECT_CODE(kNotARecipient, refused.status);
  EXPECT_TRUE(refused.out.empty());
  EXPECT_CODE(kOwnCertificateNotFound, decrypt(openMinimal(), message).code);
}

TEST_F(Envelopes, NothingCanBeEncrypted) {
  const Bytes message = encrypt(open("carol"), {}, {"alice"});
  const Decrypted opened = decrypt(open("alice"), message);
  EXPECT_CODE(0, opened.code);
  EXPECT_TRUE(opened.out.empty());
}

TEST_F(Envelopes, LengthsAroundABlockComeBack) {
  const EngineSession session = open("bob");
  for (size_t length : {1, 15, 16, 17, 31, 32, 127, 128, 255, 256, 65535, 65536}) {
    const Bytes data(length, 'x');
    EXPECT_EQ(data, decrypt(session, encrypt(session, data, {"bob"})).out) << length;
  }
}

TEST_F(Envelopes, SenderIsReported) {
  const Decrypted opened = decrypt(open("alice"), encrypt(open("carol"), payload, {"alice"}));
  EXPECT_EQ("CN=Carol, C=RU", opened.sender);
  EngineSession keyless = open("", "store");
  EXPECT_EQ("", decrypt(open("alice"), encrypt(keyless, payload, {"alice"})).sender);
}

TEST_F(Envelopes, OwnKeyIsChosenByIdentifier) {
  const Bytes message = encrypt(open("carol"), payload, {"alice"});
  const Bytes wrongHash(20, 7);
  CertIdRecord id{};
  id.type = 2;
  id.certHash = BlobOf(wrongHash);
  EXPECT_CODE(kOwnCertificateNotFound, decrypt(open("alice"), message, &id).code);
}

TEST_F(Envelopes, RecipientsAreChecked) {
  const EngineSession session = open("alice");
  Bytes out;
  EXPECT_CODE(kNoRecipients, tryEncrypt(session, 0, payload, {}, out));
  EXPECT_CODE(kRevoked, tryEncrypt(session, 0, payload, {"carol"}, out));
  EXPECT_CODE(kExpired, tryEncrypt(session, 0, payload, {"alice", "dave"}, out));
  EXPECT_CODE(kNotYetValid, tryEncrypt(session, 0, payload, {"erin"}, out));
  EXPECT_CODE(kIssuerUnknown, tryEncrypt(session, 0, payload, {"mallory"}, out));
  EXPECT_CODE(kRecipientUnsuitable, tryEncrypt(session, 0, payload, {"root"}, out));
  EXPECT_TRUE(out.empty());
}

TEST_F(Envelopes, ChecksOfRecipientsCanBeLeftOut) {
  const EngineSession session = open("alice");
  Bytes out;
  EXPECT_CODE(0, tryEncrypt(session, 0x10, payload, {"dave"}, out));
  EXPECT_CODE(0, tryEncrypt(session, 0x20, payload, {"mallory"}, out));
  EXPECT_CODE(kExpired, tryEncrypt(session, 0x20, payload, {"dave"}, out));
  EXPECT_CODE(0, tryEncrypt(session, 0x30, payload, {"dave"}, out));
}

TEST_F(Envelopes, RecipientsAreFoundInTheStore) {
  const EngineSession session = open("carol");
  const DataBlob_t in = BlobOf(payload);
  const auto encryptTo = [&](CertificateRecord receiver, uint32_t flags, Bytes& out) {
    const EncryptParamRecord param{flags, nullptr, 1, &receiver};
    DataBlob_t result{};
    const int32_t code = QUIVO_EncryptMem(session, &param, &in, &result);
    out = take(session, result);
    return code;
  };
  char address[] = "ALICE@example.test";
  char subject[] = "c=ru,o=Example,CN=Bob\\, Second,emailAddress=bob@example.test";
  char part[] = "bob, second";
  char nobody[] = "nobody@example.test";
  Bytes out;
  CertificateRecord receiver{};
  receiver.subjectAltName.emailAddress = address;
  EXPECT_CODE(0, encryptTo(receiver, 0, out));
  EXPECT_EQ(payload, decrypt(open("alice"), out).out);
  EXPECT_CODE(kRecipientNotFound, encryptTo(receiver, 0x800, out));
  receiver.subjectAltName.emailAddress = nobody;
  EXPECT_CODE(kRecipientNotFound, encryptTo(receiver, 0, out));
  receiver = {};
  EXPECT_CODE(kRecipientNotFound, encryptTo(receiver, 0, out));
  receiver.subject = subject;
  EXPECT_CODE(0, encryptTo(receiver, 0, out));
  EXPECT_EQ(payload, decrypt(open("bob"), out).out);
  receiver.subject = part;
  EXPECT_CODE(kRecipientNotFound, encryptTo(receiver, 0, out));
  char common[] = "c=ru";
  receiver.subject = common;
  EXPECT_CODE(kRecipientAmbiguous, encryptTo(receiver, 0x200, out));
}

TEST_F(Envelopes, OpensslMessagesAreOpened) {
  const Bytes data = Material("data.bin");
  for (const char* name : {"two", "stream", "des3", "oaep"}) {
    const Decrypted opened = decrypt(open("alice"), Material(std::string("messages/") + name + ".p7e"));
    EXPECT_CODE(0, opened.code) << name;
    EXPECT_EQ(data, opened.out) << name;
  }
  EXPECT_EQ(data, decrypt(open("bob"), Material("messages/two.p7e")).out);
  EXPECT_EQ(data, decrypt(open("bob"), Material("messages/stream.p7e")).out);
  EXPECT_CODE(kNotARecipient, decrypt(open("alice"), Material("messages/frank.p7e")).code);
}

TEST_F(Envelopes, OtherMessagesAreToldApart) {
  const EngineSession session = open("alice");
  EXPECT_CODE(kNotEncrypted, decrypt(session, Material("messages/attached.p7s")).code);
  EXPECT_CODE(kNotSigned, verify(session, Material("messages/two.p7e")).code);
  EXPECT_CODE(kMessageDamaged, decrypt(session, payload).code);
  EXPECT_CODE(kMessageDamaged, decrypt(session, {}).code);
}

TEST_F(Envelopes, FilesAreEncryptedLikeMemory) {
  const EngineSession session = open("alice");
  const std::string plain = ScratchPath("plain");
  const std::string sealed = ScratchPath("sealed");
  const std::string opened = ScratchPath("opened");
  WriteBytes(plain, payload);
  Receivers receivers({"alice", "bob"});
  const EncryptParamRecord param = receivers.param();
  ASSERT_CODE(0, QUIVO_EncryptFile(session, &param, plain.c_str(), sealed.c_str()));
  EXPECT_EQ(payload, decrypt(open("bob"), ReadBytes(sealed)).out);
  const DecryptParamRecord decryptParam{1, nullptr, 4};
  DecryptResultRecord result{};
  ASSERT_CODE(0, QUIVO_DecryptFile(open("bob"), &decryptParam, sealed.c_str(), opened.c_str(), &result));
  EXPECT_EQ(payload, ReadBytes(opened));
}

TEST_F(Envelopes, NothingIsWrittenWhenDecryptionFails) {
  const EngineSession session = open("carol");
  const std::string out = ScratchPath("not for carol");
  const DecryptParamRecord param{1, nullptr, 4};
  DecryptResultRecord result{};
  EXPECT_CODE(kNotARecipient,
              QUIVO_StrDecryptFile(session, &param, MaterialPath("messages/two.p7e").c_str(), out.c_str(), &result));
  EXPECT_CODE(kNotARecipient, result.status);
  EXPECT_EQ(nullptr, result.cert.subject);
  EXPECT_FALSE(FileExists(out));
  EXPECT_CODE(0, QUIVO_FreeDecryptResult(session, &result));
}

TEST_F(Envelopes, SignedAndEncryptedFileIsDecryptedAndVerified) {
  const EngineSession alice = open("alice");
  const std::string plain = ScratchPath("both.plain");
  const std::string sealed = ScratchPath("both.sealed");
  const std::string opened = ScratchPath("both.opened");
  WriteBytes(plain, payload);
  Receivers receivers({"bob"});
  const SignParamRecord signParam{1 | kSendCertificate, nullptr};
  const EncryptParamRecord encryptParam = receivers.param(1);
  ASSERT_CODE(0, QUIVO_SignAndEncryptFile(alice, &signParam, &encryptParam, plain.c_str(), sealed.c_str()));

  const EngineSession bob = open("bob");
  const DecryptParamRecord decryptParam{1, nullptr, 4};
  VerifyParamRecord verifyParam{};
  verifyParam.flag = 5;
  verifyParam.nSignToDelete = -1;
  DecryptResultRecord decrypted{};
  VerifyResultRecord verified{};
  EXPECT_CODE(0, QUIVO_DecryptAndVerifyFile(bob, &decryptParam, &verifyParam, sealed.c_str(), opened.c_str(),
                                            &decrypted, &verified));
  EXPECT_EQ(payload, ReadBytes(opened));
  EXPECT_EQ(0, decrypted.status);
  EXPECT_NE(nullptr, decrypted.cert.subject);
  EXPECT_EQ(1, verified.count);
  QUIVO_FreeDecryptResult(bob, &decrypted);
  QUIVO_FreeVerifyResult(bob, &verified);

  EXPECT_CODE(kNotARecipient, QUIVO_DecryptAndVerifyFile(open("carol"), &decryptParam, &verifyParam, sealed.c_str(),
                                                         opened.c_str(), &decrypted, &verified));
  EXPECT_CODE(kNotARecipient, decrypted.status);
  EXPECT_EQ(0, verified.count);
}
