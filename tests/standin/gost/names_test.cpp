// Russian attributes of names, the texts of GOST algorithms, and searches for them.
#include "../store_fixture.h"

using namespace standin;

namespace {

constexpr char kStore[] = "gost/store";

class GostNames : public StoreTest {
 protected:
  CertificateRecord parse(EngineSession session, const std::string& name, uint32_t fields) {
    const Bytes encoded = Material(name);
    const DataBlob_t blob = BlobOf(encoded);
    CertificateRecord record{};
    EXPECT_CODE(0, QUIVO_ParseCert(session, &blob, fields, &record));
    return record;
  }
  std::string algorithmOf(const std::string& name, uint32_t form) {
    const EngineSession session = openMinimal();
    CertificateRecord record = parse(session, name, form);
    const std::string text = record.algorithm;
    QUIVO_FreeCert(session, &record);
    return text;
  }
  /// How many have a subject of which `part` (Windows-1251) is a part.
  size_t foundBy(std::string part) {
    FindParamRecord param = WithFlags(0x200);
    param.certTemplate.subject = part.data();
    return find(open("gost/oleg", kStore), param).size();
  }
};

}  // namespace

TEST_F(GostNames, NumbersOfAPersonAreShownByName) {
  const EngineSession session = openMinimal();
  CertificateRecord record = parse(session, "gost/nina.cer", 4);
  const std::string subject = record.subject;
  for (const char* part : {"INN=772301234567", "OGRN=1027700132195", "SNILS=11223344595", "OGRNIP=304500116000157",
                           "INNLE=7707083893", "unstructuredName=KPP=773601001"}) {
    EXPECT_NE(std::string::npos, subject.find(part)) << part << " in " << subject;
  }
  QUIVO_FreeCert(session, &record);
}

TEST_F(GostNames, NumbersAreFound) {
  EXPECT_EQ(1u, foundBy("INN=772301234567"));
  EXPECT_EQ(1u, foundBy("SNILS = 11223344595"));
  EXPECT_EQ(1u, foundBy("INN=7723"));
  EXPECT_EQ(1u, foundBy("KPP=773601001"));
  EXPECT_EQ(0u, foundBy("INN=772301234568"));
}

TEST_F(GostNames, RussianNamesOfAttributesAreUnderstood) {
  EXPECT_EQ(1u, foundBy("\xC8\xCD\xCD=772301234567"));
  EXPECT_EQ(1u, foundBy("\xCE\xC3\xD0\xCD=1027"));
  EXPECT_EQ(0u, foundBy("\xC8\xCD\xCD=99"));
}

TEST_F(GostNames, AlgorithmHasANameAndANumber) {
  EXPECT_EQ("GOST R 34.10-2012 with GOST R 34.11-2012 (512 bit)", algorithmOf("gost/nina.cer", 1u << 18));
  EXPECT_EQ("1.2.643.7.1.1.3.3", algorithmOf("gost/nina.cer", 1u << 31));
}
