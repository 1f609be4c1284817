// Encryption and decryption: recipients, keys, refusals, and the operations that also sign or verify.
#include "element.h"
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

TEST_F(Envelopes, SenderIsNamedOnlyWhenTheCallerNamesIt) {
  const EngineSession carol = open("carol");
  EXPECT_EQ("", decrypt(open("alice"), encrypt(carol, payload, {"alice"})).sender);
  const Bytes hash = HashOf(carol, Material("carol.cer"));
  const CertIdRecord id = ByHash(hash);
  Receivers receivers({"alice"});
  EncryptParamRecord param = receivers.param();
  param.mycert = &id;
  const DataBlob_t in = BlobOf(payload);
  DataBlob_t out{};
  ASSERT_CODE(0, QUIVO_EncryptMem(carol, &param, &in, &out));
  EXPECT_EQ("CN=Carol, C=RU", decrypt(open("alice"), take(carol, out)).sender);
}

TEST_F(Envelopes, AuthenticatedMessagesAreOpened) {
  const Bytes data = Material("data.bin");
  for (const char* name : {"gcm", "stream.gcm"}) {
    const Decrypted opened = decrypt(open("alice"), Material(std::string("messages/") + name + ".p7e"));
    EXPECT_CODE(0, opened.code) << name;
    EXPECT_EQ(data, opened.out) << name;
  }
  EXPECT_EQ(data, decrypt(open("bob"), Material("messages/gcm.p7e")).out);
}

TEST_F(Envelopes, AuthenticatedMessagesAreWrittenWhenThePolicyOfTheStoreAsks) {
  const std::string folder = CopyOfStore("store", "authenticated");
  WriteBytes(folder + "\\policy.txt", BytesOf("encrypt authenticated\n"));
  const EngineSession session = openIn("alice", folder);
  const Bytes message = encrypt(session, payload, {"alice", "bob"});
  // AuthEnvelopedData, AES-256 in GCM mode.
  EXPECT_EQ(Oid("1.2.840.113549.1.9.16.1.23").encode(), ParseElement(message).at({0}).encode());
  EXPECT_EQ(Oid("2.16.840.1.101.3.4.1.46").encode(), ParseElement(message).at({1, 0, 2, 1, 0}).encode());
  EXPECT_EQ(payload, decrypt(open("bob"), message).out);
}

TEST_F(Envelopes, ChangedAuthenticatedMessageIsRefused) {
  const std::string folder = CopyOfStore("store", "changed.keys");
  WriteBytes(folder + "\\policy.txt", BytesOf("encrypt authenticated"));
  const EngineSession session = openIn("alice", folder);
  Element message = ParseElement(encrypt(session, payload, {"alice"}));
  const auto changed = [&](std::initializer_list<size_t> path, size_t length) {
    Element copy = message;
    Bytes& content = copy.at(path).content;
    content.resize(length);
    content[0] ^= 1;
    return decrypt(session, copy.encode()).code;
  };
  EXPECT_CODE(kDecryptionFailed, changed({1, 0, 2, 2}, payload.size()));
  EXPECT_CODE(kDecryptionFailed, changed({1, 0, 2, 2}, payload.size() - 1));
  EXPECT_CODE(kDecryptionFailed, changed({1, 0, 3}, 16));
  // A short tag is easy to guess.
  EXPECT_CODE(kDecryptionFailed, changed({1, 0, 3}, 12));
  EXPECT_CODE(kDecryptionFailed, changed({1, 0, 3}, 1));
  message.at({1, 0}).children.pop_back();
  EXPECT_CODE(kMessageDamaged, decrypt(session, message.encode()).code);
}

TEST_F(Envelopes, LengthOfTheTagMayBeLeftOutIfItIsTwelve) {
  Element message = ParseElement(Material("messages/gcm.p7e"));
  message.at({1, 0, 2, 1, 1}).children.pop_back();
  EXPECT_CODE(kDecryptionFailed, decrypt(open("alice"), message.encode()).code);
  message.at({1, 0, 3}).content.resize(12);
  EXPECT_EQ(Material("data.bin"), decrypt(open("alice"), message.encode()).out);
}

TEST_F(Envelopes, AuthenticatedAttributesAreRefused) {
  Element message = ParseElement(Material("messages/gcm.p7e"));
  Element& data = message.at({1, 0});
  const Element attributes = Constructed(0xA1, {Sequence({Oid("1.2.643.99.6"), Set({Primitive(0x05, {})})})});
  data.children.insert(data.children.begin() + 3, attributes);
  EXPECT_CODE(kNotSupported, decrypt(open("alice"), message.encode()).code);
}

TEST_F(Envelopes, ArmouredMessagesAreOpened) {
  const Decrypted opened = decrypt(open("alice"), Material("messages/two.pem"));
  EXPECT_CODE(0, opened.code);
  EXPECT_EQ(Material("data.bin"), opened.out);
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
  for (const char* person : {"root", "grace", "judy"}) {
    EXPECT_CODE(kRecipientUnsuitable, tryEncrypt(session, 0, payload, {person}, out)) << person;
  }
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
  EncryptParamRecord encryptParam = receivers.param(1);
  const Bytes hash = HashOf(alice, Material("alice.cer"));
  const CertIdRecord id = ByHash(hash);
  encryptParam.mycert = &id;
  ASSERT_CODE(0, QUIVO_SignAndEncryptFile(alice, &signParam, &encryptParam, plain.c_str(), sealed.c_str()));

  const EngineSession bob = open("bob");
  // As pkiobj calls it: no field is asked for.
  const DecryptParamRecord decryptParam{1, nullptr, 0};
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
  ASSERT_EQ(1, verified.count);
  EXPECT_NE(nullptr, verified.entries[0].cert->subject);
  QUIVO_FreeDecryptResult(bob, &decrypted);
  QUIVO_FreeVerifyResult(bob, &verified);

  EXPECT_CODE(kNotARecipient, QUIVO_DecryptAndVerifyFile(open("carol"), &decryptParam, &verifyParam, sealed.c_str(),
                                                         opened.c_str(), &decrypted, &verified));
  EXPECT_CODE(kNotARecipient, decrypted.status);
  EXPECT_EQ(0, verified.count);
}
