// The certificate store: searching, parsing, adding, exporting, importing.
#include "support/certificates.h"
#include "support/class_objects.h"
#include "support/malloc_spy.h"
#include "support/operations.h"
#include "support/records.h"

namespace {

class FindCertTest : public ContractTest {
 protected:
  HRESULT find() { return quivo->FindCert(param, result.out()); }
  fake::Reply& reply() { return engine().on("QUIVO_FindCert"); }
  const fake::Call& call() { return engine().only("QUIVO_FindCert"); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IFindParam> param = Make<IFindParam>();
  Variant result = Variant::text(L"before");
};

TEST_F(FindCertTest, ParametersReachTheEngine) {
  EXPECT_OK(param->put_flag(Flag_Find_PartialSubject));
  EXPECT_OK(param->put_info(Field_All));
  EXPECT_OK(find());
  EXPECT_EQ(512u, call().record(1).u32(0));
  EXPECT_EQ(0x7FFFFu, MaskIn(call().record(1)));
  EXPECT_TRUE(call().record(2).part(0, 4).allZero());
  EXPECT_EQ(0u, call().record(2).pointer(8));
}

TEST_F(FindCertTest, NegativeCountIsAnEmptyArray) {
  reply().findCount = -3;
  EXPECT_OK(find());
  EXPECT_EQ(0u, ObjectsOf(result).size());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(FindCertTest, FailedSearchLeavesEverythingAlone) {
  for (int32_t code : {1, 0x19}) {
    engine().forgetCalls();
    reply().result = code;
    EXPECT_HR(code == 1 ? 1u : 0xE0690019u, find());
    EXPECT_EQ(L"before", TextOf(result));
    EXPECT_EQ(0u, engine().count("QUIVO_FreeFindResult"));
  }
}

class ParseCertTest : public ContractTest {
 protected:
  fake::Reply& reply() { return engine().on("QUIVO_ParseCert"); }
  const fake::Call& call() { return engine().only("QUIVO_ParseCert"); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<ICertificate> certificate;
};

TEST_F(ParseCertTest, EncodingAndMaskReachTheEngine) {
  for (Certinfo_t mask : {Field_All, static_cast<Certinfo_t>(Field_AlgorithmOidFormat), static_cast<Certinfo_t>(0)}) {
    engine().forgetCalls();
    EXPECT_OK(quivo->ParseCert(ByteArray({0x30}), mask, certificate.out()));
    EXPECT_EQ((Bytes{0x30}), call().blobBytes(1));
    EXPECT_EQ(static_cast<uint32_t>(mask), static_cast<uint32_t>(call().value(2)));
    EXPECT_TRUE(call().record(3).allZero());
  }
}

TEST_F(ParseCertTest, FailedUnlockWins) {
  Variant data = ByteArray({0x30});
  reply().during = [&] { data.safeArray()->cLocks = 0; };
  EXPECT_HR(E_UNEXPECTED, quivo->ParseCert(data, Field_All, certificate.out()));
  data.safeArray()->cLocks = 0;
  EXPECT_NE(nullptr, certificate.get());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeCert"));
}

class AddToStoreTest : public ContractTest, public ::testing::WithParamInterface<Operation> {
 protected:
  HRESULT add(ICertId* id) { return GetParam().call(Objects(openQuivo()), {{0, id}, {1, ByteArray({0x30, 1})}}); }
  const fake::Call& call() { return engine().only(GetParam().function); }
};

TEST_P(AddToStoreTest, IdentifierAndBytesReachTheEngine) {
  Ptr<ICertId> id = Make<ICertId>();
  EXPECT_OK(id->put_type(Id_KeyId));
  EXPECT_OK(id->put_keyId(Bstr(L"key")));
  EXPECT_OK(add(id));
  EXPECT_EQ(0u, call().record(1).u32(0));
  EXPECT_EQ("key", call().record(1).at(8).text(8));
  EXPECT_EQ(RecordOf(id.get()).address, engine().calls().at(0).record(1).pointer(8));
}

TEST_P(AddToStoreTest, BytesReachTheEngine) {
  EXPECT_OK(add(nullptr));
  EXPECT_EQ((Bytes{0x30, 1}), call().blobBytes(2));
}

TEST_P(AddToStoreTest, NullIdentifierIsANullPointerInTheRecord) {
  EXPECT_OK(add(nullptr));
  EXPECT_FALSE(call().null(1));
  EXPECT_TRUE(call().record(1).allZero());
}

INSTANTIATE_TEST_SUITE_P(Methods, AddToStoreTest,
                         ::testing::ValuesIn(Where(Operations(),
                                                   [](const auto& row) { return row.name.starts_with("Add"); })),
                         NameOfRow<Operation>);

using StoreTest = ContractTest;

TEST_F(StoreTest, ParametersOfExportAndImportReachTheEngine) {
  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IExportParam> exporting = Make<IExportParam>();
  Ptr<IImportParam> importing = Make<IImportParam>();
  EXPECT_OK(exporting->put_flag(Flag_Export_RutokenGost));
  EXPECT_OK(importing->put_flag(Flag_Import_Update));
  EXPECT_OK(quivo->ExportMem(exporting, Variant().out(), VARIANT_FALSE));
  EXPECT_OK(quivo->ExportFile(exporting, Bstr(L"file")));
  EXPECT_OK(quivo->ImportMem(importing, Variant()));
  EXPECT_OK(quivo->ImportFile(importing, Bstr(L"file")));
  EXPECT_EQ(64u, engine().only("QUIVO_ExportMem").record(1).u32(0));
  EXPECT_EQ(64u, engine().only("QUIVO_ExportFile").record(1).u32(0));
  EXPECT_EQ(16u, engine().only("QUIVO_ImportMem").record(1).u32(0));
  EXPECT_EQ(16u, engine().only("QUIVO_ImportFile").record(1).u32(0));
}

}  // namespace
