// The engine against the examples of the standards: hashes, certificates, signed and enveloped messages.
#include "../element.h"
#include "../engine_test.h"

using namespace standin;

namespace {

constexpr char kStore[] = "gost/vectors/store";
/// GOST R 34.11-2012, appendix A, as bytes: the standard writes them from the last to the first.
constexpr char kFirst[] = "012345678901234567890123456789012345678901234567890123456789012";
/// In Windows-1251: "Се ветри, Стрибожи внуци, веютъ с моря стрелами на храбрыя плъкы Игоревы".
constexpr char kSecond[] =
    "\xd1\xe5 \xe2\xe5\xf2\xf0\xe8, \xd1\xf2\xf0\xe8\xe1\xee\xe6\xe8 \xe2\xed\xf3\xf6\xe8, \xe2\xe5\xfe\xf2\xfa \xf1 "
    "\xec\xee\xf0\xff \xf1\xf2\xf0\xe5\xeb\xe0\xec\xe8 \xed\xe0 \xf5\xf0\xe0\xe1\xf0\xfb\xff \xef\xeb\xfa\xea\xfb "
    "\xc8\xe3\xee\xf0\xe5\xe2\xfb";

class GostVectors : public EngineTest {
 protected:
  std::string hashOf(const char* algorithm, const std::string& text) {
    const std::string path = ScratchPath("to hash");
    WriteBytes(path, BytesOf(text));
    const EngineSession session = openMinimal();
    DataBlob_t hash{};
    EXPECT_CODE(0, QUIVO_StrHashFile(session, algorithm, path.c_str(), &hash));
    std::string digits;
    for (const uint8_t byte : take(session, hash)) {
      digits += "0123456789abcdef"[byte >> 4];
      digits += "0123456789abcdef"[byte & 15];
    }
    return digits;
  }
  int32_t check(const std::string& folder, const Bytes& certificate) {
    const EngineSession session = open("", folder);
    const DataBlob_t blob = BlobOf(certificate);
    const VerifyCertParamRecord param{0, nullptr, 4};
    CertificateRecord record{};
    const int32_t code = QUIVO_VerifyCert(session, &param, &blob, &record);
    QUIVO_FreeCert(session, &record);
    return code;
  }
};

}  // namespace

TEST_F(GostVectors, HashesAreThoseOfTheStandard) {
  EXPECT_EQ("9d151eefd8590b89daa6ba6cb74af9275dd051026bb149a452fd84e5e57b5500", hashOf("md_gost12_256", kFirst));
  EXPECT_EQ("9dd2fe4e90409e5da87f53976d7405b0c0cac628fc669a741d50063c557e8f50", hashOf("1.2.643.7.1.1.2.2", kSecond));
  EXPECT_EQ(
      "1b54d01a4af5b9d5cc3d86d68d285462b19abc2475222f35c085122be4ba1ffa00ad30f8767b3a82384c6574f024c311e2a481332b08ef7f"
      "41797891c1646f48",
      hashOf("MD-GOST12-512", kFirst));
  EXPECT_EQ(
      "1e88e62226bfca6f9994f1f2d51569e0daf8475a3b0fe61a5300eee46d961376035fe83549ada2b8620fcd7c496ce5b33f0cb9dddc2b6460"
      "143b03dabac9fb28",
      hashOf("streebog512", kSecond));
  EXPECT_EQ("2cefc2f7b7bdc514e18ea57fa74ff357e7fa17d652c75f69cb1be7893ede48eb",
            hashOf("md_gost94", "This is message, length=32 bytes"));
}

TEST_F(GostVectors, SelfSignedCertificatesAreGenuine) {
  for (const char* name : {"certificate_256_test", "certificate_256_a", "certificate_512_test"}) {
    const std::string folder = std::string("gost/vectors/") + name;
    const Bytes certificate = Material(folder + "/root.cer");
    EXPECT_CODE(0, check(folder, certificate)) << name;
    Bytes changed = certificate;
    changed.back() ^= 1;
    EXPECT_NE(0, check(folder, changed)) << name;
  }
}

// The authority of the examples is none by today's rules: that alone is wrong with the signatures.
TEST_F(GostVectors, SignaturesAreGenuine) {
  const EngineSession session = open("", kStore);
  for (const char* name : {"signed_a111.pem", "signed_a121.pem"}) {
    const Bytes message = Material(std::string("gost/vectors/") + name);
    const Verified verified = verify(session, message);
    ASSERT_EQ(1u, verified.verdicts.size()) << name;
    EXPECT_CODE(kChainBroken, verified.verdicts[0].status) << name;
  }
}

TEST_F(GostVectors, EnvelopesAreOpened) {
  const Bytes text = Material("gost/vectors/enveloped.txt");
  EXPECT_EQ(
      text,
      decrypt(open("gost/vectors/recipient256", kStore), Material("gost/vectors/encrypted_keytrans_a231.pem")).out);
  EXPECT_EQ(
      text,
      decrypt(open("gost/vectors/recipient512", kStore), Material("gost/vectors/encrypted_keytrans_a241.pem")).out);
}

TEST_F(GostVectors, EnvelopesByKeyAgreementAreOpened) {
  const Bytes text = Material("gost/vectors/enveloped.txt");
  const EngineSession of512 = open("gost/vectors/recipient512", kStore);
  EXPECT_EQ(text, decrypt(of512, Material("gost/vectors/encrypted_keyagree_a211.pem")).out);
  const Bytes named = Material("gost/vectors/encrypted_keyagree_a221.pem");
  EXPECT_EQ(text, decrypt(open("gost/vectors/recipient256", kStore), named).out);
  // The sender's certificate is in the store alone.
  EXPECT_CODE(kSignerUnknown, decrypt(open("gost/vectors/recipient256", "gost/roots"), named).code);
}
