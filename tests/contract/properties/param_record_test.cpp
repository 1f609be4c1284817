// The records of objects: what they hold at first, and what becomes of the engine's.
#include "contract/properties/properties.h"
#include "support/operations.h"

namespace {

using ParamRecordTest = ContractTest;

/// The classes whose records the engine sees.
std::vector<CoClass> ClassesWithRecords() {
  return Where(Classes(), [](const CoClass& coclass) {
    return std::any_of(AllProperties().begin(), AllProperties().end(), [&](const Property& property) {
      return property.owner.name == coclass.name && property.hasRecord();
    });
  });
}

/// Those that state nothing from the start: not the session parameters, which state their size, nor an identifier,
/// which states that it has no type.
std::vector<CoClass> ClassesWithEmptyRecords() {
  return Where(ClassesWithRecords(), [](const CoClass& coclass) {
    return coclass.name != "LocalParam" && coclass.name != "RSrvParam" && coclass.name != "CertId";
  });
}

TEST_F(ParamRecordTest, RecordsStartAsZero) {
  EXPECT_LE(11u, ClassesWithEmptyRecords().size());
  for (const CoClass& coclass : ClassesWithEmptyRecords()) {
    EXPECT_TRUE(RecordOf(MakeUnknown(coclass.clsid, IID_IDispatch).as<IDispatch>()).allZero()) << coclass;
  }
}

TEST_F(ParamRecordTest, LocalParametersStateTheirSizeOnly) {
  const fake::Snapshot record = RecordOf(Make<ILocalParam>().get());
  EXPECT_EQ(48u, record.u64(0));
  EXPECT_TRUE(record.part(8, 40).allZero());
}

TEST_F(ParamRecordTest, RemoteParametersStateTheirSizeOnly) {
  const fake::Snapshot record = RecordOf(Make<IRSrvParam>().get());
  EXPECT_EQ(32u, record.u64(0));
  EXPECT_TRUE(record.part(8, 24).allZero());
}

TEST_F(ParamRecordTest, SizeStaysWhenEverythingIsSet) {
  Ptr<ILocalParam> local = Make<ILocalParam>();
  EXPECT_OK(local->put_flag(Flag_Init_VerifyContext));
  EXPECT_OK(local->put_pincode(Bstr(L"1234")));
  EXPECT_EQ(48u, RecordOf(local.get()).u64(0));
  Ptr<IRSrvParam> remote = Make<IRSrvParam>();
  EXPECT_OK(remote->put_timeout(-1));
  EXPECT_OK(remote->put_servers(StringArray({L"a", L"b"})));
  EXPECT_EQ(32u, RecordOf(remote.get()).u64(0));
}

TEST_F(ParamRecordTest, EngineReadsTheRecordsOfParametersInsideTheirObjects) {
  size_t parameters = 0;
  for (const CoClass& coclass : ClassesWithRecords()) {
    if (!coclass.name.ends_with("Param")) continue;
    Ptr<IDispatch> object = MakeUnknown(coclass.clsid, IID_IDispatch).as<IDispatch>();
    const auto start = reinterpret_cast<uintptr_t>(object.get());
    const uintptr_t address = RecordOf(object).address;
    EXPECT_GT(address, start) << coclass;
    EXPECT_LT(address, start + 64) << coclass;
    ++parameters;
  }
  EXPECT_LE(9u, parameters);
}

TEST_F(ParamRecordTest, EngineReadsTheTemplateOfARequestInsideItsCertificate) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(
      openQuivo()->CreateXmlRequest(Flag_Xml_Request_Do_Not_Generate, certificate, Variant().out(), VARIANT_FALSE));
  const auto start = reinterpret_cast<uintptr_t>(static_cast<void*>(certificate.get()));
  const uint64_t address = engine().only("QUIVO_CreateXmlRequest").value(2);
  EXPECT_GT(address, start);
  EXPECT_LT(address, start + 64);
}

TEST_F(ParamRecordTest, EveryOperationSeesTheRecordOfTheMoment) {
  Ptr<ISignParam> param = Make<ISignParam>();
  EXPECT_OK(param->put_flag(Flag_Sign_Detached));
  EXPECT_EQ(2u, RecordOf(param.get()).u32(0));
  EXPECT_OK(param->put_flag(static_cast<SignParamFlag_t>(0xFFFFFFFF)));
  EXPECT_EQ(0xFFFFFFFFu, RecordOf(param.get()).u32(0));
}

/// Equal but for the addresses, with everything that they point to.
void ExpectSameRecords(const fake::Snapshot& expected, const fake::Snapshot& found, const std::string& path) {
  SCOPED_TRACE(path);
  ASSERT_EQ(expected.pointees.size(), found.pointees.size());
  std::vector<uint8_t> first = expected.bytes, second = found.bytes;
  for (const auto& [offset, pointee] : expected.pointees) {
    std::fill_n(first.begin() + static_cast<ptrdiff_t>(offset), sizeof(void*), uint8_t{0});
    std::fill_n(second.begin() + static_cast<ptrdiff_t>(offset), sizeof(void*), uint8_t{0});
    ExpectSameRecords(pointee, found.at(offset), path + " " + std::to_string(offset));
  }
  EXPECT_EQ(first, second);
}

TEST_F(ParamRecordTest, EveryPropertyOfTheEnginesCertificateIsTakenOver) {
  Ptr<IDispatch> given = Make<ICertificate>().as<IDispatch>();
  for (const Property& property : AllProperties()) {
    if (property.owner.name != "Certificate") continue;
    const Variant sample = property.sample();
    EXPECT_OK(property.put(given, SlotOf(sample))) << property;
  }
  const fake::Snapshot record = RecordOf(given);
  engine().on("QUIVO_ParseCert").record = record;
  Ptr<ICertificate> parsed;
  EXPECT_OK(openQuivo()->ParseCert(Variant(), Field_All, parsed.out()));
  ExpectSameRecords(record, RecordOf(parsed), "certificate");
}

}  // namespace
