// Encrypting and decrypting bytes and files.
#include "support/certificates.h"
#include "support/class_objects.h"
#include "support/malloc_spy.h"
#include "support/operations.h"

namespace {

class EncryptMemTest : public ContractTest {
 protected:
  fake::Reply& reply() { return engine().on("QUIVO_EncryptMem"); }
  const fake::Call& call() { return engine().only("QUIVO_EncryptMem"); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IEncryptParam> param = Make<IEncryptParam>();
  Variant output;
};

TEST_F(EncryptMemTest, ParametersAndDataReachTheEngine) {
  Ptr<ICertificate> receiver = Make<ICertificate>();
  EXPECT_OK(receiver->put_certEncoded(ByteArray({0x30, 1})));
  EXPECT_OK(param->put_flag(Flag_Encrypt_Pkcs7));
  EXPECT_OK(param->put_Receivers(ObjectArray({receiver})));
  EXPECT_OK(quivo->EncryptMem(param, ByteArray({1, 2}), output.out()));
  EXPECT_EQ(1u, call().record(1).u32(0));
  EXPECT_EQ(1, call().record(1).i32(16));
  EXPECT_EQ((Bytes{0x30, 1}), call().record(1).at(24).blob(376));
  EXPECT_EQ((Bytes{1, 2}), call().blobBytes(2));
  EXPECT_TRUE(call().record(3).allZero());
}

TEST_F(EncryptMemTest, EmptyInputIsEncryptedAsUsual) {
  reply().output = {9};
  EXPECT_OK(quivo->EncryptMem(param, Variant(), output.out()));
  EXPECT_EQ(0u, call().blobLength(2));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
}

TEST_F(EncryptMemTest, FailedUnlockWinsThoughTheOutputIsWritten) {
  Variant data = ByteArray({1});
  reply().output = {9};
  reply().during = [&] { data.safeArray()->cLocks = 0; };
  EXPECT_HR(E_UNEXPECTED, quivo->EncryptMem(param, data, output.out()));
  data.safeArray()->cLocks = 0;
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
}

TEST_F(EncryptMemTest, OutputMayBeTheDataVariable) {
  Variant variable = ByteArray({1});
  reply().output = {9};
  EXPECT_OK(quivo->EncryptMem(param, ByRef(variable), variable.out()));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(variable));
}

class DecryptMemTest : public ContractTest {
 protected:
  HRESULT decrypt(VARIANT data) { return quivo->DecryptMem(param, data, output.out(), certificate.inOut()); }
  fake::Reply& reply() { return engine().on("QUIVO_DecryptMem"); }
  const fake::Call& call() { return engine().only("QUIVO_DecryptMem"); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IDecryptParam> param = Make<IDecryptParam>();
  Variant output;
  Ptr<ICertificate> certificate;
};

TEST_F(DecryptMemTest, ParametersAndDataReachTheEngine) {
  EXPECT_OK(param->put_flag(Flag_Decrypt_NoCrlCheck));
  EXPECT_OK(param->put_info(Field_Issuer));
  EXPECT_OK(decrypt(ByteArray({1, 2})));
  EXPECT_EQ(4u, call().record(1).u32(0));
  EXPECT_EQ(2u, call().record(1).u32(16));
  EXPECT_EQ((Bytes{1, 2}), call().blobBytes(2));
  EXPECT_TRUE(call().record(3).allZero());
  EXPECT_TRUE(call().record(4).allZero());
}

TEST_F(DecryptMemTest, BytesAndCertificateAreReturned) {
  reply().output = {9};
  reply().certificate = FullCertificate();
  EXPECT_OK(decrypt(VbsByteArray({1})));
  EXPECT_EQ((Bytes{9}), VbsBytesOf(output));
  ExpectFullCertificate(certificate);
  EXPECT_EQ(1u, engine().count("QUIVO_FreeDecryptResult"));
}

TEST_F(DecryptMemTest, ResultIsGivenBackAfterTheOutput) {
  reply().output = {9};
  EXPECT_OK(decrypt(ByteArray({1})));
  EXPECT_EQ((std::vector<std::string>{"QUIVO_DecryptMem", "QUIVO_FreeMem", "QUIVO_FreeDecryptResult"}),
            engine().names());
  EXPECT_EQ(call().value(4), engine().last().value(1));
}

TEST_F(DecryptMemTest, RefusedMessageLeavesTheOutputsAsTheyAre) {
  for (int32_t code : {1, 0x19}) {
    reply().result = code;
    output = Variant::text(L"before");
    ICertificate* const before = certificate = Make<ICertificate>();
    EXPECT_HR(code == 1 ? 1u : 0xE0690019u, decrypt(ByteArray({1})));
    EXPECT_EQ(L"before", TextOf(output));
    EXPECT_EQ(before, certificate.get());
  }
  EXPECT_EQ(0u, engine().count("QUIVO_FreeDecryptResult"));
}

TEST_F(DecryptMemTest, FailedUnlockWinsThoughTheOutputsAreWritten) {
  Variant data = ByteArray({1});
  reply().output = {9};
  reply().during = [&] { data.safeArray()->cLocks = 0; };
  EXPECT_HR(E_UNEXPECTED, decrypt(data));
  data.safeArray()->cLocks = 0;
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
  EXPECT_NE(nullptr, certificate.get());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeDecryptResult"));
}

TEST_F(DecryptMemTest, FailureOfTheCertificateIsReturnedAfterTheOutput) {
  SubstituteFactory factory(__uuidof(Certificate));
  factory.failAfter(0, E_NOINTERFACE);
  reply().output = {9};
  EXPECT_HR(E_NOINTERFACE, decrypt(ByteArray({1})));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
  EXPECT_EQ(nullptr, certificate.get());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeDecryptResult"));
}

TEST_F(DecryptMemTest, FailureOfTheOutputLeavesTheCertificateAlone) {
  reply().output = {9};
  reply().certificate = FullCertificate();
  reply().during = [] { MallocSpy::get().failAllocation(0); };
  EXPECT_HR(kOutOfMemory, decrypt(ByteArray({1})));
  EXPECT_EQ(nullptr, certificate.get());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeDecryptResult"));
}

class EncryptFileTest : public ContractTest, public ::testing::WithParamInterface<Operation> {};

TEST_P(EncryptFileTest, PathsReachTheEngineInOrder) {
  Objects objects(openQuivo());
  EXPECT_OK(objects.encrypt->put_flag(Flag_Encrypt_NoVerify));
  EXPECT_OK(GetParam().call(objects, {{1, Bstr(L"in")}, {2, Bstr(L"out")}}));
  const fake::Call& call = engine().only(GetParam().function);
  EXPECT_EQ(32u, call.record(1).u32(0));
  EXPECT_EQ("in", call.text(2));
  EXPECT_EQ("out", call.text(3));
}

INSTANTIATE_TEST_SUITE_P(Methods, EncryptFileTest, ::testing::ValuesIn(OperationsEnding("EncryptFile")),
                         NameOfRow<Operation>);

class DecryptFileTest : public ContractTest, public ::testing::WithParamInterface<Operation> {
 protected:
  HRESULT decrypt(BSTR in = Bstr(L"in"), BSTR out = Bstr(L"out")) {
    return GetParam().call(Objects(quivo), {{0, param}, {1, in}, {2, out}, {3, certificate.inOut()}});
  }
  fake::Reply& reply() { return engine().on(GetParam().function); }
  const fake::Call& call() { return engine().only(GetParam().function); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IDecryptParam> param = Make<IDecryptParam>();
  Ptr<ICertificate> certificate;
};

TEST_P(DecryptFileTest, PathsReachTheEngineInOrder) {
  EXPECT_OK(param->put_info(Field_Subject));
  EXPECT_OK(decrypt(Bstr(L"first"), Bstr(L"second")));
  EXPECT_EQ(4u, call().record(1).u32(16));
  EXPECT_EQ("first", call().text(2));
  EXPECT_EQ("second", call().text(3));
  EXPECT_TRUE(call().record(4).allZero());
}

TEST_P(DecryptFileTest, NullPathLeavesTheCertificateAlone) {
  EXPECT_HR(kInvalidArgument, decrypt(nullptr, Bstr(L"out")));
  EXPECT_HR(kInvalidArgument, decrypt(Bstr(L"in"), nullptr));
  EXPECT_EQ(nullptr, certificate.get());
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

INSTANTIATE_TEST_SUITE_P(Methods, DecryptFileTest, ::testing::ValuesIn(OperationsEnding("DecryptFile")),
                         NameOfRow<Operation>);

}  // namespace
