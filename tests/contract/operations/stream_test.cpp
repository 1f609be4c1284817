// Streams: what the engine receives of them, and the results of their last call.
#include "contract/operations/calls.h"
#include "support/certificates.h"
#include "support/class_objects.h"

namespace {

struct StreamCall {
  const char* function;
  /// The argument that is the address of the stream handle.
  size_t handle;
  HRESULT (*call)(const Objects&);
};

// Begin, go on and end of each kind.
const StreamCall kSign[]{
    {"QUIVO_StrSignInitMem", 3, [](const Objects& o) { return o.quivo->StrSignInitMem(o.sign, Variant(), o.stream); }},
    {"QUIVO_StrSignUpdateMem", 2,
     [](const Objects& o) { return o.quivo->StrSignUpdateMem(o.sign, o.stream, Variant()); }},
    {"QUIVO_StrSignFinalMem", 2,
     [](const Objects& o) { return o.quivo->StrSignFinalMem(o.sign, o.stream, Variant().out()); }}};
const StreamCall kVerify[]{
    {"QUIVO_StrVerifyInitMem", 3,
     [](const Objects& o) { return o.quivo->StrVerifyInitMem(o.verify, Variant(), o.stream); }},
    {"QUIVO_StrVerifyUpdateMem", 2,
     [](const Objects& o) { return o.quivo->StrVerifyUpdateMem(o.verify, o.stream, Variant()); }},
    {"QUIVO_StrVerifyFinalMem", 2, [](const Objects& o) {
       return o.quivo->StrVerifyFinalMem(o.verify, o.stream, Variant().out(), Variant().out());
     }}};
const StreamCall kEncrypt[]{
    {"QUIVO_StrEncryptInitMem", 2, [](const Objects& o) { return o.quivo->StrEncryptInitMem(o.encrypt, o.stream); }},
    {"QUIVO_StrEncryptUpdateMem", 2,
     [](const Objects& o) { return o.quivo->StrEncryptUpdateMem(o.encrypt, o.stream, Variant(), Variant().out()); }},
    {"QUIVO_StrEncryptFinalMem", 2,
     [](const Objects& o) { return o.quivo->StrEncryptFinalMem(o.encrypt, o.stream, Variant().out()); }}};
const StreamCall kDecrypt[]{
    {"QUIVO_StrDecryptInitMem", 4,
     [](const Objects& o) { return o.quivo->StrDecryptInitMem(o.decrypt, Variant(), Variant().out(), o.stream); }},
    {"QUIVO_StrDecryptUpdateMem", 2,
     [](const Objects& o) {
       return o.quivo->StrDecryptUpdateMem(o.decrypt, o.stream, Variant(), Variant().out(), Variant().out());
     }},
    {"QUIVO_StrDecryptFinalMem", 2,
     [](const Objects& o) { return o.quivo->StrDecryptFinalMem(o.decrypt, o.stream, Ptr<ICertificate>().out()); }}};
const StreamCall kHash[]{
    {"QUIVO_StrHashInitMem", 2, [](const Objects& o) { return o.quivo->StrHashInitMem(Bstr(L"algorithm"), o.stream); }},
    {"QUIVO_StrHashUpdateMem", 1, [](const Objects& o) { return o.quivo->StrHashUpdateMem(o.stream, Variant()); }},
    {"QUIVO_StrHashFinalMem", 1, [](const Objects& o) { return o.quivo->StrHashFinalMem(o.stream, Variant().out()); }}};

class StreamTest : public ContractTest {
 protected:
  const fake::Argument& handleOf(const StreamCall& row) { return engine().only(row.function).argument(row.handle); }
  void runWhole(const StreamCall (&kind)[3]) {
    engine().on(kind[0].function).handle = reinterpret_cast<void*>(0xABCD);
    for (const StreamCall& row : kind) EXPECT_OK(row.call(objects)) << row.function;
    EXPECT_EQ(0u, handleOf(kind[0]).target.u64(0));
    EXPECT_EQ(0xABCDu, handleOf(kind[1]).target.u64(0));
    EXPECT_EQ(0xABCDu, handleOf(kind[2]).target.u64(0));
    EXPECT_EQ(handleOf(kind[0]).value, handleOf(kind[1]).value);
    EXPECT_EQ(handleOf(kind[0]).value, handleOf(kind[2]).value);
  }

  Objects objects{openQuivo()};
};

TEST_F(StreamTest, HandleOfASignatureIsKeptInTheContext) { runWhole(kSign); }
TEST_F(StreamTest, HandleOfAVerificationIsKeptInTheContext) { runWhole(kVerify); }
TEST_F(StreamTest, HandleOfAnEncryptionIsKeptInTheContext) { runWhole(kEncrypt); }
TEST_F(StreamTest, HandleOfADecryptionIsKeptInTheContext) { runWhole(kDecrypt); }
TEST_F(StreamTest, HandleOfAHashIsKeptInTheContext) { runWhole(kHash); }

TEST_F(StreamTest, OrderOfTheCallsIsTheEnginesAffair) {
  EXPECT_OK(objects.quivo->StrSignFinalMem(objects.sign, objects.stream, Variant().out()));
  EXPECT_EQ(0u, handleOf(kSign[2]).target.u64(0));
  engine().on("QUIVO_StrHashUpdateMem").result = static_cast<int32_t>(0xE0700001);
  EXPECT_HR(0xE0700001, objects.quivo->StrHashUpdateMem(objects.stream, Variant()));
}

TEST_F(StreamTest, ContextMayMoveToAnotherKind) {
  EXPECT_OK(kSign[0].call(objects));
  EXPECT_OK(kHash[1].call(objects));
  EXPECT_NE(0u, handleOf(kHash[1]).target.u64(0));
}

TEST_F(StreamTest, AbandonedStreamIsLeftToTheEngine) {
  EXPECT_OK(kSign[0].call(objects));
  engine().forgetCalls();
  objects.stream.reset();
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(StreamTest, ContextsHaveHandlesOfTheirOwn) {
  Objects others(openQuivo());
  EXPECT_OK(kHash[0].call(objects));
  EXPECT_OK(kHash[0].call(others));
  const auto& calls = engine().calls();
  EXPECT_NE(calls.at(0).value(2), calls.at(calls.size() - 1).value(2));
}

TEST_F(StreamTest, ParameterRecordsReachEveryCall) {
  EXPECT_OK(objects.sign->put_flag(Flag_Sign_Mark));
  EXPECT_OK(objects.verify->put_flag(Flag_Verify_MinSigns));
  EXPECT_OK(objects.encrypt->put_flag(Flag_Encrypt_Remote));
  EXPECT_OK(objects.decrypt->put_flag(Flag_Decrypt_NoCache));
  const std::pair<const StreamCall(*)[3], uint32_t> kinds[]{
      {&kSign, 32}, {&kVerify, 128}, {&kEncrypt, 4}, {&kDecrypt, 2}};
  for (const auto& [kind, flag] : kinds) {
    for (const StreamCall& row : *kind) {
      EXPECT_OK(row.call(objects));
      EXPECT_EQ(flag, engine().only(row.function).record(1).u32(0)) << row.function;
    }
  }
}

TEST_F(StreamTest, AlgorithmReachesTheEngine) {
  EXPECT_OK(objects.quivo->StrHashInitMem(Bstr(L"ГОСТ"), objects.stream));
  EXPECT_EQ("\xC3\xCE\xD1\xD2", engine().only("QUIVO_StrHashInitMem").text(1));
}

class StreamVerifyFinalTest : public ContractTest {
 protected:
  HRESULT finish() {
    return objects.quivo->StrVerifyFinalMem(objects.verify, objects.stream, output.out(), results.out());
  }
  fake::Reply& reply() { return engine().on("QUIVO_StrVerifyFinalMem"); }

  Objects objects{openQuivo()};
  Variant output = Variant::text(L"before"), results;
};

TEST_F(StreamVerifyFinalTest, OutputsAreZeroBeforeTheCall) {
  EXPECT_OK(finish());
  const fake::Call& call = engine().only("QUIVO_StrVerifyFinalMem");
  EXPECT_TRUE(call.record(3).allZero());
  EXPECT_EQ(0, call.record(4).i32(0));
  EXPECT_EQ(0u, call.record(4).pointer(8));
}

TEST_F(StreamVerifyFinalTest, ResultsAndMessageAreReturned) {
  reply().signatures = {{0, 0, fullCertificate()}};
  reply().output = {9};
  EXPECT_OK(finish());
  EXPECT_EQ((Bytes{9}), plainBytesOf(output));
  Ptr<ICertificate> cert;
  EXPECT_OK(objectsOf<ISignStatus>(results).at(0)->get_cert(cert.out()));
  expectFullCertificate(cert);
}

TEST_F(StreamVerifyFinalTest, RejectedStreamHasResultsButNoMessage) {
  reply().result = 0x19;
  reply().signatures = {{0x19, 0, {}}};
  EXPECT_HR(0xE0690019, finish());
  EXPECT_EQ(1u, objectsOf(results).size());
  EXPECT_EQ(L"before", textOf(output));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_F(StreamVerifyFinalTest, FailureOfTheResultsKeepsTheMessage) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, E_NOINTERFACE);
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(E_NOINTERFACE, finish());
  EXPECT_EQ(L"before", textOf(output));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_F(StreamVerifyFinalTest, EngineCodeWinsOverAFailureOfTheResults) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, E_NOINTERFACE);
  reply().result = 0x19;
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(0xE0690019, finish());
}

class StreamDecryptFinalTest : public ContractTest {
 protected:
  HRESULT finish() { return objects.quivo->StrDecryptFinalMem(objects.decrypt, objects.stream, certificate.inOut()); }
  fake::Reply& reply() { return engine().on("QUIVO_StrDecryptFinalMem"); }

  Objects objects{openQuivo()};
  Ptr<ICertificate> certificate;
};

TEST_F(StreamDecryptFinalTest, ResultIsZeroBeforeTheCall) {
  EXPECT_OK(finish());
  EXPECT_TRUE(engine().only("QUIVO_StrDecryptFinalMem").record(3).allZero());
}

TEST_F(StreamDecryptFinalTest, CertificateIsReturned) {
  reply().certificate = fullCertificate();
  EXPECT_OK(finish());
  expectFullCertificate(certificate);
}

TEST_F(StreamDecryptFinalTest, CertificateIsReturnedOnFailureToo) {
  reply().result = 0x19;
  reply().certificate = certificateOf("CN=x");
  EXPECT_HR(0xE0690019, finish());
  ASSERT_NE(nullptr, certificate.get());
  EXPECT_EQ(L"CN=x", subjectOf(certificate));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeDecryptResult"));
}

TEST_F(StreamDecryptFinalTest, FailureOfTheCertificateIsReturnedMapped) {
  SubstituteFactory factory(__uuidof(Certificate));
  factory.failAfter(0, static_cast<HRESULT>(0x80070005));
  EXPECT_HR(kAccessDenied, finish());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeDecryptResult"));
}

TEST_F(StreamDecryptFinalTest, EngineCodeWinsOverAFailureOfTheCertificate) {
  SubstituteFactory factory(__uuidof(Certificate));
  factory.failAfter(0, E_NOINTERFACE);
  reply().result = 0x19;
  EXPECT_HR(0xE0690019, finish());
}

}  // namespace
