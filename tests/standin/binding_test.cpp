// What a signature binds: the content with its type, the signer's certificate; and who counts as a signer.
#include "element.h"
#include "engine_test.h"

using namespace standin;

namespace {

class Binding : public EngineTest {
 protected:
  static Element& inside(Element& message) { return message.at({1, 0}); }
  const Bytes payload = BytesOf("text to be bound");
};

const Element kOtherType = Oid("1.2.643.99.10");

}  // namespace

TEST_F(Binding, WithoutAttributesOnlyPlainDataIsSigned) {
  Element message = ParseElement(Material("messages/noattr.p7s"));
  EXPECT_CODE(0, verify(open("bob"), message.encode()).code);
  inside(message).at({2, 0}) = kOtherType;
  EXPECT_CODE(kBadSignature, verify(open("bob"), message.encode()).code);
}

TEST_F(Binding, TypeOfTheContentIsSigned) {
  Element message = ParseElement(Material("messages/attached.p7s"));
  inside(message).at({2, 0}) = kOtherType;
  EXPECT_CODE(kBadSignature, verify(open("bob"), message.encode()).code);
}

TEST_F(Binding, SignedAttributesAreNotTakenForContent) {
  for (const char* person : {"alice", "bob"}) {
    Element message = ParseElement(sign(open(person), kSendCertificate, payload));
    Element& signer = inside(message).at({4, 0});
    Element attributes = signer.at({3});
    ASSERT_EQ(0xA0, attributes.tag);
    attributes.tag = 0x31;
    signer.children.erase(signer.children.begin() + 3);
    inside(message).at({2, 1, 0}).content = attributes.encode();
    EXPECT_CODE(kBadSignature, verify(open("carol"), message.encode()).code) << person;
    inside(message).at({2}).children.pop_back();
    const Bytes content = attributes.encode();
    EXPECT_CODE(kBadSignature, verify(open("carol"), message.encode(), &content).code) << person;
  }
}

TEST_F(Binding, CertificateMustBeTheOneThatTheSignatureNames) {
  Element message = ParseElement(Material("messages/cades.p7s"));
  const EngineSession session = open("bob", "roots");
  EXPECT_CODE(0, verify(session, message.encode()).code);
  const Element alice = inside(message).at({3, 0});
  const Element twin = ParseElement(Material("twin.cer"));
  inside(message).at({3, 0}) = twin;
  EXPECT_CODE(kSignerUnknown, verify(session, message.encode()).code);
  inside(message).at({3}).children.push_back(alice);
  EXPECT_CODE(0, verify(session, message.encode()).code);
}

TEST_F(Binding, SignersAreCountedNotSignatures) {
  const EngineSession bob = open("bob");
  Element message = ParseElement(addSignature(bob, kSendCertificate, nullptr, sign(bob, kSendCertificate, payload)));
  ASSERT_EQ(2u, inside(message).at({4}).children.size());
  VerifyParamRecord param{};
  param.flag = 0x80;
  param.minsigns = 2;
  EXPECT_CODE(kTooFewSignatures, verify(bob, message.encode(), nullptr, param).code);
  const Bytes both = addSignature(open("alice"), kSendCertificate, nullptr, message.encode());
  EXPECT_CODE(0, verify(bob, both, nullptr, param).code);
}
