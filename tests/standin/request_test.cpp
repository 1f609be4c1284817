// Requests: what is in them, which key they use, where they are kept.
#include "store_fixture.h"

using namespace standin;

namespace {

class Requests : public StoreTest {};

}  // namespace

TEST_F(Requests, RequestIsMadeKeptAndExported) {
  const std::string folder = CopyOfStore("roots", "requests");
  const EngineSession session = openIn("alice", folder);
  char subject[] = "CN=\xCD\xEE\xE2\xFB\xE9 <&> \"q\", O=\"A, B\", C=RU";
  char address[] = "new@example.test";
  char usage[] = "1.3.6.1.5.5.7.3.4";
  char* usages[] = {usage};
  CertificateRecord wanted{};
  wanted.subject = subject;
  wanted.keyUsage = 5;
  wanted.extKeyUsage = usages;
  wanted.extKeyUsageCount = 1;
  wanted.subjectAltName.emailAddress = address;
  DataBlob_t out{};
  ASSERT_CODE(0, QUIVO_CreateXmlRequest(session, 0, &wanted, &out));
  const Bytes bytes = take(session, out);
  const std::string xml(bytes.begin(), bytes.end());
  EXPECT_EQ(0u, xml.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
  EXPECT_NE(std::string::npos, xml.find("\\&lt;&amp;\\&gt;")) << xml;
  EXPECT_NE(std::string::npos, xml.find("<Pkcs10>MII")) << xml;
  EXPECT_NE(std::string::npos, xml.find("<KeyUsage>5</KeyUsage>")) << xml;
  const Bytes pem = exported(session, 4, nullptr);
  EXPECT_EQ("-----BEGIN CERTIFICATE REQUEST-----", std::string(pem.begin(), pem.begin() + 35));
}

TEST_F(Requests, OwnKeyIsUsedWhenNoneIsToBeMade) {
  const EngineSession session = open("bob", "roots");
  const CertificateRecord wanted{};
  const std::string folder = CopyOfStore("roots", "own key");
  DataBlob_t out{};
  ASSERT_CODE(0, QUIVO_CreateXmlRequest(openIn("bob", folder), 4, &wanted, &out));
  EXPECT_CODE(kWinInvalidParameter, QUIVO_CreateXmlRequest(openIn("bob", folder), 0, &wanted, &out));
  EXPECT_CODE(kNotSupported, QUIVO_CreateXmlRequest(session, 2, &wanted, &out));
}

TEST_F(Requests, WithoutAStoreAKeyWouldBeLost) {
  char subject[] = "CN=x";
  CertificateRecord wanted{};
  wanted.subject = subject;
  DataBlob_t out{};
  EXPECT_CODE(kNoStore, QUIVO_CreateXmlRequest(openMinimal(), 0, &wanted, &out));
  char broken[] = "no name at all";
  wanted.subject = broken;
  EXPECT_CODE(kWinInvalidParameter, QUIVO_CreateXmlRequest(openMinimal(), 0, &wanted, &out));
  exported(openIn("alice", CopyOfStore("roots", "no requests")), 4, nullptr, kNothingToExport);
}
