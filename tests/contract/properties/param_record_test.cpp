// The records of new parameter objects.
#include "contract/properties/records.h"

namespace {

using ParamRecordTest = ContractTest;

TEST_F(ParamRecordTest, OperationParametersStartAsZero) {
  EXPECT_TRUE(recordOf(make<SignParam>().get()).allZero());
  EXPECT_TRUE(recordOf(make<VerifyParam>().get()).allZero());
  EXPECT_TRUE(recordOf(make<EncryptParam>().get()).allZero());
  EXPECT_TRUE(recordOf(make<DecryptParam>().get()).allZero());
  EXPECT_TRUE(recordOf(make<FindParam>().get()).allZero());
  EXPECT_TRUE(recordOf(make<ExportParam>().get()).allZero());
  EXPECT_TRUE(recordOf(make<ImportParam>().get()).allZero());
}

TEST_F(ParamRecordTest, CertificateObjectsStartAsZero) {
  EXPECT_TRUE(recordOf(make<Certificate>().get()).allZero());
  EXPECT_TRUE(recordOf(make<AltName>().get()).allZero());
  EXPECT_TRUE(recordOf(make<Policy>().get()).allZero());
  EXPECT_TRUE(recordOf(make<Extension>().get()).allZero());
}

TEST_F(ParamRecordTest, LocalParametersTellTheirSizeOnly) {
  const fake::Snapshot record = recordOf(make<LocalParam>().get());
  EXPECT_EQ(48u, record.u64(0));
  EXPECT_TRUE(record.part(8, 40).allZero());
}

TEST_F(ParamRecordTest, RemoteParametersTellTheirSizeOnly) {
  const fake::Snapshot record = recordOf(make<RSrvParam>().get());
  EXPECT_EQ(32u, record.u64(0));
  EXPECT_TRUE(record.part(8, 24).allZero());
}

TEST_F(ParamRecordTest, SizeStaysWhenEverythingIsSet) {
  Ptr<ILocalParam> local = make<LocalParam>();
  EXPECT_OK(local->put_flag(Flag_Init_VerifyContext));
  EXPECT_OK(local->put_pincode(Bstr(L"1234")));
  EXPECT_EQ(48u, recordOf(local.get()).u64(0));
  Ptr<IRSrvParam> remote = make<RSrvParam>();
  EXPECT_OK(remote->put_timeout(-1));
  EXPECT_OK(remote->put_servers(strings({L"a", L"b"})));
  EXPECT_EQ(32u, recordOf(remote.get()).u64(0));
}

template <class Interface>
void expectRecordInside(const Ptr<Interface>& object) {
  const auto start = reinterpret_cast<uintptr_t>(static_cast<void*>(object.get()));
  const uintptr_t address = recordOf(object.get()).address;
  EXPECT_GT(address, start);
  EXPECT_LT(address, start + 64);
}

TEST_F(ParamRecordTest, EngineReadsEachRecordInsideItsObject) {
  expectRecordInside(make<SignParam>());
  expectRecordInside(make<VerifyParam>());
  expectRecordInside(make<EncryptParam>());
  expectRecordInside(make<DecryptParam>());
  expectRecordInside(make<FindParam>());
  expectRecordInside(make<ExportParam>());
  expectRecordInside(make<ImportParam>());
  expectRecordInside(make<LocalParam>());
  expectRecordInside(make<RSrvParam>());
}

TEST_F(ParamRecordTest, EngineReadsTheTemplateOfARequestInsideItsCertificate) {
  Ptr<ICertificate> certificate = make<Certificate>();
  EXPECT_OK(
      openQuivo()->CreateXmlRequest(Flag_Xml_Request_Do_Not_Generate, certificate, Variant().out(), VARIANT_FALSE));
  const auto start = reinterpret_cast<uintptr_t>(static_cast<void*>(certificate.get()));
  const uint64_t address = engine().only("QUIVO_CreateXmlRequest").value(2);
  EXPECT_GT(address, start);
  EXPECT_LT(address, start + 64);
}

TEST_F(ParamRecordTest, EveryOperationSeesTheRecordOfTheMoment) {
  Ptr<ISignParam> param = make<SignParam>();
  EXPECT_OK(param->put_flag(Flag_Sign_Detached));
  EXPECT_EQ(2u, recordOf(param.get()).u32(0));
  EXPECT_OK(param->put_flag(static_cast<SignParamFlag_t>(0xFFFFFFFF)));
  EXPECT_EQ(0xFFFFFFFFu, recordOf(param.get()).u32(0));
}

}  // namespace
