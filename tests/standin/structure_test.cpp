// The structure of messages: what may stand where, how often, and in which version.
#include <functional>

#include "element.h"
#include "engine_test.h"

using namespace standin;

namespace {

class Structure : public EngineTest {
 protected:
  /// Version, digests, content, certificates, signers.
  static Element& inside(Element& message) { return message.at({1, 0}); }

  int32_t verdictOn(const std::function<void(Element&)>& change) {
    Element message = whole;
    change(inside(message));
    return verify(open("bob"), message.encode()).code;
  }
  int32_t decrypted(const std::function<void(Element&)>& change) {
    Element message = ParseElement(encrypt(open("carol"), payload, {"bob"}));
    change(inside(message));
    return decrypt(open("bob"), message.encode()).code;
  }

  const Bytes payload = BytesOf("some text");
  const Element whole = ParseElement(sign(open("alice"), kSendCertificate, payload));
};

const Element kAttributeCertificate = Constructed(0xA2, {Sequence({})});
const Element kOcspAnswer = Constructed(0xA1, {Oid("1.3.6.1.5.5.7.16.2"), Sequence({Primitive(0x0A, {0})})});
const Element kOtherCertificate = Constructed(0xA3, {Oid("1.2.643.99.5"), Primitive(0x05, {})});

void InsertAt(Element& parent, size_t index, const Element& child) {
  parent.children.insert(parent.children.begin() + static_cast<ptrdiff_t>(index), child);
}

}  // namespace

TEST_F(Structure, VersionNumbersAreNoReasonToRefuse) {
  for (const uint8_t version : {0, 1, 2, 3, 4, 5, 9}) {
    const Element number = Primitive(0x02, {version});
    EXPECT_CODE(0, verdictOn([&](Element& data) { data.at({0}) = number; })) << int{version};
    EXPECT_CODE(0, verdictOn([&](Element& data) { data.at({4, 0, 0}) = number; })) << int{version};
    EXPECT_CODE(0, decrypted([&](Element& data) { data.at({0}) = number; })) << int{version};
  }
  const Element large = Primitive(0x02, {1, 0, 0, 0, 0});
  EXPECT_CODE(0, verdictOn([&](Element& data) { data.at({0}) = large; }));
}

TEST_F(Structure, AttributeCertificatesAreRead) {
  EXPECT_CODE(0, verdictOn([](Element& data) { data.at({3}).children.push_back(kAttributeCertificate); }));
  EXPECT_CODE(0, verdictOn([](Element& data) { data.at({3}).children.push_back(kOtherCertificate); }));
}

TEST_F(Structure, EmbeddedOcspAnswersAreRead) {
  EXPECT_CODE(0, verdictOn([](Element& data) { InsertAt(data, 4, Constructed(0xA1, {kOcspAnswer})); }));
}

TEST_F(Structure, AdditionsKeepWhatTheMessageHas) {
  Element message = whole;
  inside(message).at({3}).children.push_back(kAttributeCertificate);
  InsertAt(inside(message), 4, Constructed(0xA1, {kOcspAnswer}));
  Element both = ParseElement(addSignature(open("bob"), kSendCertificate, nullptr, message.encode()));
  EXPECT_EQ(Bytes{5}, inside(both).at({0}).content);
  EXPECT_EQ(3u, inside(both).at({3}).children.size());
  EXPECT_EQ(1u, inside(both).at({4}).children.size());
  const Verified verified = verify(open("carol"), both.encode());
  EXPECT_CODE(0, verified.code);
  EXPECT_EQ(2u, verified.verdicts.size());
}

TEST_F(Structure, EachPartOfASignedMessageStandsOnceInItsPlace) {
  const auto repeated = [](size_t index, size_t place) {
    return [=](Element& data) { InsertAt(data, place, Element(data.at({index}))); };
  };
  EXPECT_CODE(kMessageDamaged, verdictOn(repeated(3, 3)));
  EXPECT_CODE(kMessageDamaged, verdictOn(repeated(4, 4)));
  EXPECT_CODE(kMessageDamaged, verdictOn(repeated(3, 5)));
  EXPECT_CODE(kMessageDamaged, verdictOn([](Element& data) { std::swap(data.at({3}), data.at({4})); }));
  EXPECT_CODE(kMessageDamaged, verdictOn([](Element& data) { InsertAt(data, 3, Constructed(0xA1, {})); }));
  EXPECT_CODE(kMessageDamaged, verdictOn([](Element& data) { data.children.push_back(Set({})); }));
  EXPECT_CODE(kMessageDamaged, verdictOn([](Element& data) { data.children.push_back(Primitive(0x02, {1})); }));
  EXPECT_CODE(kMessageDamaged, verdictOn([](Element& data) { data.children.pop_back(); }));
}

TEST_F(Structure, NothingButAttributesStandsBehindTheContentOfAnEnvelope) {
  const Element attributes = Constructed(0xA1, {Sequence({Oid("1.2.643.99.6"), Set({Primitive(0x05, {})})})});
  EXPECT_CODE(0, decrypted([&](Element& data) { data.children.push_back(attributes); }));
  EXPECT_CODE(kMessageDamaged, decrypted([&](Element& data) {
                data.children.push_back(attributes);
                data.children.push_back(attributes);
              }));
  EXPECT_CODE(kMessageDamaged, decrypted([](Element& data) { data.children.push_back(Primitive(0x02, {1})); }));
  EXPECT_CODE(kMessageDamaged, decrypted([](Element& data) { data.children.push_back(Set({})); }));
}

TEST_F(Structure, ArmourIsRead) {
  const Bytes text = Material("messages/attached.pem");
  const Verified verified = verify(open("bob"), text);
  EXPECT_CODE(0, verified.code);
  EXPECT_EQ(Material("data.bin"), verified.out);
  EXPECT_CODE(0, verifyFile(open("bob"), MaterialPath("messages/attached.pem"), "").code);
}

TEST_F(Structure, DamagedArmourIsRefused) {
  const std::string text = [] {
    const Bytes bytes = Material("messages/attached.pem");
    return std::string(bytes.begin(), bytes.end());
  }();
  const auto code = [&](const std::string& changed) { return verify(open("bob"), BytesOf(changed)).code; };
  const size_t end = text.find("-----END");
  std::string windows = text;
  for (size_t at = 0; (at = windows.find('\n', at)) != std::string::npos; at += 2) windows.insert(at, "\r");
  EXPECT_CODE(0, code(windows));
  EXPECT_CODE(kMessageDamaged, code(text.substr(0, end)));
  EXPECT_CODE(kMessageDamaged, code(text + "more"));
  EXPECT_CODE(kMessageDamaged, code(text + text));
  EXPECT_CODE(kMessageDamaged, code(text.substr(0, end) + "QUJD\n" + text.substr(end)));
  EXPECT_CODE(kMessageDamaged, code(text.substr(0, 100) + "*" + text.substr(100)));
  EXPECT_CODE(kMessageDamaged, code(std::string(1000, '-')));
}

TEST_F(Structure, NoMessageIsWrittenThatCouldNotBeRead) {
  Element message = whole;
  Element& signers = inside(message).at({4});
  for (uint8_t i = 0; signers.children.size() < 256; ++i) {
    signers.children.push_back(signers.children[0]);
    signers.children.back().children.back().content[0] = i;
    signers.children.back().children.back().content[1] ^= 1;
  }
  Bytes out;
  const Bytes full = message.encode();
  EXPECT_CODE(kTooLarge, trySign(open("bob"), kSendCertificate, nullptr, &full, out));
}
