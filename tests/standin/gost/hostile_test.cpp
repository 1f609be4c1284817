// What strangers can put into messages for GOST keys: nothing of it may do more than fail.
#include "../element.h"
#include "../engine_test.h"
#include "../mutations.h"

using namespace standin;

namespace {

constexpr char kStore[] = "gost/store";

class GostHostile : public EngineTest {
 protected:
  /// A message to nina from a store with this policy.
  Bytes sealed(const std::string& policy) {
    static int stores;
    const std::string folder = CopyOfStore(kStore, "hostile " + std::to_string(++stores));
    WriteBytes(folder + "/policy.txt", BytesOf(policy));
    return encrypt(openIn("gost/oleg", folder), payload, {"gost/nina"});
  }
  int32_t opened(const Element& message) {
    const Decrypted result = decrypt(nina_, message.encode());
    EXPECT_TRUE(result.code == 0 || result.out.empty());
    return result.code;
  }
  static Element& recipientOf(Element& message) { return message.at({1, 0, 1, 0}); }
  static Element& cipherOf(Element& message) { return message.at({1, 0, 2, 1}); }
  /// The transported key is an encoded structure in an octet string.
  static Element transportOf(Element& message) { return ParseElement(recipientOf(message).at({3}).content); }
  static void setTransport(Element& message, const Element& transport) {
    recipientOf(message).at({3}).content = transport.encode();
  }
  /// What comes of the message with a part of its transported key replaced.
  int32_t withPart(const Bytes& whole, std::initializer_list<size_t> path, const Element& part) {
    Element message = ParseElement(whole);
    Element transport = transportOf(message);
    transport.at(path) = part;
    setTransport(message, transport);
    return opened(message);
  }
  static Element keyOf(const std::string& name) {
    Element certificate = ParseElement(Material(name));
    return certificate.at({0, 6});
  }
  static Element octets(size_t size) { return Primitive(0x04, Bytes(size, 0x77)); }

  const Bytes payload = BytesOf("some text");
  const EngineSession nina_ = open("gost/nina", kStore);
};

}  // namespace

TEST_F(GostHostile, TransportOfGost28147IsRead) {
  const Bytes whole = sealed("encrypt gost28147\n");
  EXPECT_CODE(0, opened(ParseElement(whole)));
  for (const size_t size : {0, 1, 31, 33, 4000}) {
    EXPECT_CODE(kDecryptionFailed, withPart(whole, {0, 0}, octets(size))) << size;
    EXPECT_CODE(kDecryptionFailed, withPart(whole, {0, 1}, octets(size))) << size;
    EXPECT_CODE(kDecryptionFailed, withPart(whole, {1, 2}, octets(size))) << size;
  }
  EXPECT_CODE(kDecryptionFailed, withPart(whole, {0, 1}, octets(4)));
  EXPECT_CODE(kDecryptionFailed, withPart(whole, {1}, Constructed(0xA0, {})));
}

TEST_F(GostHostile, TransportOfTheNewCiphersIsRead) {
  const Bytes whole = sealed("");
  EXPECT_CODE(0, opened(ParseElement(whole)));
  for (const size_t size : {0, 1, 32, 47, 49, 4000}) {
    EXPECT_CODE(kDecryptionFailed, withPart(whole, {0}, octets(size))) << size;
    EXPECT_CODE(kDecryptionFailed, withPart(whole, {2}, octets(size))) << size;
  }
  EXPECT_CODE(kDecryptionFailed, withPart(whole, {0}, octets(48)));
}

TEST_F(GostHostile, EphemeralKeyOfAnotherKindIsRefused) {
  for (const char* policy : {"", "encrypt gost28147\n"}) {
    const bool old = *policy != 0;
    const Bytes whole = sealed(policy);
    for (const char* other : {"alice.cer", "bob.cer", "gost/oleg.cer", "gost/rita.cer"}) {
      Element key = keyOf(other);
      if (old) key.tag = 0xA0;
      EXPECT_CODE(kDecryptionFailed, old ? withPart(whole, {1, 1}, key) : withPart(whole, {1}, key)) << other;
    }
  }
}

TEST_F(GostHostile, ParametersOfTheCipherAreRead) {
  for (const char* policy : {"", "encrypt magma\n", "encrypt gost28147\n", "encrypt authenticated\n"}) {
    const Bytes whole = sealed(policy);
    for (const Element& parameters : {Sequence({}), Sequence({octets(7)}), Sequence({octets(17), Oid("1.2.3")}),
                                      Primitive(0x05, {}), octets(8), Sequence({octets(8), octets(8)})}) {
      Element message = ParseElement(whole);
      cipherOf(message).at({1}) = parameters;
      EXPECT_CODE(kAlgorithmUnknown, opened(message)) << policy;
    }
  }
}

TEST_F(GostHostile, ContentWithoutItsCodeIsRefused) {
  const Bytes whole = sealed("encrypt authenticated\n");
  Element message = ParseElement(whole);
  ASSERT_EQ(4u, message.at({1, 0}).children.size());
  EXPECT_CODE(0, opened(message));
  message.at({1, 0, 3, 0, 1, 0}).content[0] ^= 1;
  EXPECT_CODE(kDecryptionFailed, opened(message));
  message.at({1, 0, 3, 0, 1, 0}).content.resize(8);
  EXPECT_CODE(kDecryptionFailed, opened(message));
  message.at({1, 0, 3, 0, 0}) = Oid("1.2.643.99.1");
  EXPECT_CODE(kMessageDamaged, opened(message));
  message.at({1, 0}).children.pop_back();
  EXPECT_CODE(kMessageDamaged, opened(message));
}

TEST_F(GostHostile, ProofThatIsAskedForIsNotLeftOut) {
  const std::string folder = CopyOfStore(kStore, "proof");
  Bytes out;
  WriteBytes(folder + "/policy.txt", BytesOf("encrypt authenticated\n"));
  EXPECT_CODE(kRecipientUnsuitable, tryEncrypt(openIn("gost/oleg", folder), 0, payload, {"gost/rita"}, out));
  WriteBytes(folder + "/policy.txt", BytesOf("encrypt authenticated\nencrypt gost28147\n"));
  EXPECT_CODE(kRecipientUnsuitable, tryEncrypt(openIn("gost/oleg", folder), 0, payload, {"gost/nina"}, out));
}

TEST_F(GostHostile, KeyAgreementIsRead) {
  const EngineSession recipient = open("gost/vectors/recipient512", "gost/vectors/store");
  Bytes whole = Material("gost/vectors/encrypted_keyagree_a211.der");
  const auto codeOf = [&](Element& message) { return decrypt(recipient, message.encode()).code; };
  const auto withPart = [&](std::initializer_list<size_t> path, const Element& part) {
    Element message = ParseElement(whole);
    recipientOf(message).at(path) = part;
    return codeOf(message);
  };
  Element message = ParseElement(whole);
  EXPECT_CODE(0, codeOf(message));
  for (const size_t size : {0, 24, 31, 33}) EXPECT_CODE(kDecryptionFailed, withPart({2, 0}, octets(size))) << size;
  for (const size_t size : {0, 40, 47, 49}) EXPECT_CODE(kDecryptionFailed, withPart({4, 0, 1}, octets(size))) << size;
  EXPECT_CODE(kDecryptionFailed, withPart({3}, Sequence({Oid("1.2.643.7.1.1.7.2.1")})));
  EXPECT_CODE(kDecryptionFailed, withPart({3, 0}, Oid("2.16.840.1.101.3.4.1.45")));
  for (const char* other : {"alice.cer", "bob.cer", "gost/nina.cer", "gost/pavel.cer"}) {
    Element key = keyOf(other);
    key.tag = 0xA1;
    EXPECT_CODE(kDecryptionFailed, withPart({1, 0}, key)) << other;
  }
  message = ParseElement(whole);
  recipientOf(message).children.erase(recipientOf(message).children.begin() + 2);
  EXPECT_CODE(kDecryptionFailed, codeOf(message));
}

TEST_F(GostHostile, MutatedMessagesOnlyFail) {
  std::vector<Bytes> messages = {sign(nina_, kSendCertificate, payload)};
  for (const char* policy : {"", "encrypt magma\nencrypt authenticated\n", "encrypt gost28147\n"}) {
    messages.push_back(sealed(policy));
  }
  messages.push_back(Material("gost/vectors/encrypted_keyagree_a211.der"));
  const EngineSession recipient = open("gost/vectors/recipient512", "gost/vectors/store");
  Mutations mutations(messages, 20121);
  for (int i = 0; i < 1500; ++i) {
    const Bytes mutated = mutations.next();
    for (const EngineSession session : {nina_, recipient}) {
      const Decrypted decrypted = decrypt(session, mutated);
      EXPECT_TRUE(decrypted.code == 0 || decrypted.out.empty());
    }
    verify(nina_, mutated);
  }
}
