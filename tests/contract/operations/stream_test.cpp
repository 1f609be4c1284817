// Streams: what the engine receives of them, and the results of their last call.
#include "support/certificates.h"
#include "support/class_objects.h"
#include "support/operations.h"

namespace {

class StreamTest : public ContractTest {
 protected:
  /// One step of a kind: "InitMem", "UpdateMem" or "FinalMem".
  static const Operation& step(const std::string& kind, const char* name) {
    return OperationNamed("Str" + kind + name);
  }
  HRESULT run(const std::string& kind, const char* name) { return step(kind, name).call(objects); }
  /// What the engine received as the address of the stream handle.
  const fake::Argument& handle(const std::string& kind, const char* name) {
    const Operation& operation = step(kind, name);
    return engine().only(operation.function).argument(operation.place("IStreamCtx*") + 1);
  }

  Objects objects{openQuivo()};
};

constexpr const char* kKinds[] = {"Sign", "Verify", "Encrypt", "Decrypt", "Hash"};
constexpr const char* kInit = "InitMem";
constexpr const char* kUpdate = "UpdateMem";
constexpr const char* kFinal = "FinalMem";

TEST_F(StreamTest, HandleIsKeptInTheContext) {
  for (const char* kind : kKinds) {
    SCOPED_TRACE(kind);
    objects.stream = Make<IStreamCtx>();
    engine().on(step(kind, kInit).function).handle = reinterpret_cast<void*>(0xABCD);
    for (const char* name : {kInit, kUpdate, kFinal}) EXPECT_OK(run(kind, name)) << name;
    EXPECT_EQ(0u, handle(kind, kInit).target.u64(0));
    EXPECT_EQ(0xABCDu, handle(kind, kUpdate).target.u64(0));
    EXPECT_EQ(0xABCDu, handle(kind, kFinal).target.u64(0));
    EXPECT_EQ(handle(kind, kInit).value, handle(kind, kUpdate).value);
    EXPECT_EQ(handle(kind, kInit).value, handle(kind, kFinal).value);
  }
}

TEST_F(StreamTest, OrderOfTheCallsIsTheEnginesAffair) {
  EXPECT_OK(objects.quivo->StrSignFinalMem(objects.sign, objects.stream, Variant().out()));
  EXPECT_EQ(0u, handle("Sign", kFinal).target.u64(0));
  engine().on("QUIVO_StrHashUpdateMem").result = static_cast<int32_t>(0xE0700001);
  EXPECT_HR(0xE0700001, objects.quivo->StrHashUpdateMem(objects.stream, Variant()));
}

TEST_F(StreamTest, ContextMayMoveToAnotherKind) {
  EXPECT_OK(run("Sign", kInit));
  EXPECT_OK(run("Hash", kUpdate));
  EXPECT_NE(0u, handle("Hash", kUpdate).target.u64(0));
}

TEST_F(StreamTest, AbandonedStreamIsLeftToTheEngine) {
  EXPECT_OK(run("Sign", kInit));
  engine().forgetCalls();
  objects.stream.reset();
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_F(StreamTest, ContextsHaveHandlesOfTheirOwn) {
  Objects others(openQuivo());
  EXPECT_OK(run("Hash", kInit));
  EXPECT_OK(step("Hash", kInit).call(others));
  const auto& calls = engine().calls();
  EXPECT_NE(calls.at(0).value(2), calls.at(calls.size() - 1).value(2));
}

TEST_F(StreamTest, ParameterRecordsReachEveryCall) {
  EXPECT_OK(objects.sign->put_flag(Flag_Sign_Mark));
  EXPECT_OK(objects.verify->put_flag(Flag_Verify_MinSigns));
  EXPECT_OK(objects.encrypt->put_flag(Flag_Encrypt_Remote));
  EXPECT_OK(objects.decrypt->put_flag(Flag_Decrypt_NoCache));
  const std::pair<const char*, uint32_t> kinds[]{{"Sign", 32}, {"Verify", 128}, {"Encrypt", 4}, {"Decrypt", 2}};
  for (const auto& [kind, flag] : kinds) {
    for (const char* name : {kInit, kUpdate, kFinal}) {
      EXPECT_OK(run(kind, name));
      EXPECT_EQ(flag, engine().only(step(kind, name).function).record(1).u32(0)) << kind << name;
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
  reply().signatures = {{0, 0, FullCertificate()}};
  reply().output = {9};
  EXPECT_OK(finish());
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
  Ptr<ICertificate> cert;
  EXPECT_OK(ObjectsOf<ISignStatus>(results).at(0)->get_cert(cert.out()));
  ExpectFullCertificate(cert);
}

TEST_F(StreamVerifyFinalTest, RejectedStreamHasResultsButNoMessage) {
  reply().result = 0x19;
  reply().signatures = {{0x19, 0, {}}};
  EXPECT_HR(0xE0690019, finish());
  EXPECT_EQ(1u, ObjectsOf(results).size());
  EXPECT_EQ(L"before", TextOf(output));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_F(StreamVerifyFinalTest, FailureOfTheResultsKeepsTheMessage) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, E_NOINTERFACE);
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(E_NOINTERFACE, finish());
  EXPECT_EQ(L"before", TextOf(output));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

}  // namespace
