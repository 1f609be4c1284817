// The arrays of objects that calls hand out: signature statuses and found certificates.
#include "support/certificates.h"
#include "support/malloc_spy.h"
#include "support/operations.h"

namespace {

class ObjectOutputTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  HRESULT run() { return GetParam().call(objects, results.out()); }
  fake::Reply& reply() { return engine().on(GetParam().function); }
  bool areStatuses() { return GetParam().declared().name == "VerifyResults"; }
  std::string release() { return areStatuses() ? "QUIVO_FreeVerifyResult" : "QUIVO_FreeFindResult"; }
  void answer(const std::vector<fake::Certificate>& certificates) {
    reply().certificates = certificates;
    reply().signatures.clear();
    for (const fake::Certificate& certificate : certificates) reply().signatures.push_back({0, 0, certificate});
  }
  Ptr<ICertificate> certificateAt(size_t index) {
    if (!areStatuses()) return ObjectsOf<ICertificate>(results).at(index);
    Ptr<ICertificate> certificate;
    EXPECT_OK(ObjectsOf<ISignStatus>(results).at(index)->get_cert(certificate.out()));
    return certificate;
  }

  Objects objects{openQuivo()};
  Variant results = Variant::text(L"before");
};

TEST_P(ObjectOutputTest, NothingIsAnEmptyArray) {
  EXPECT_OK(run());
  EXPECT_EQ(0u, ObjectsOf(results).size());
  EXPECT_EQ(1u, engine().count(release()));
}

TEST_P(ObjectOutputTest, ObjectsAreDeepCopiesInOrder) {
  answer({CertificateOf("CN=1"), FullCertificate(), CertificateOf("CN=3")});
  EXPECT_OK(run());
  ASSERT_EQ(3u, ObjectsOf(results).size());
  EXPECT_EQ(L"CN=1", SubjectOf(certificateAt(0)));
  ExpectFullCertificate(certificateAt(1));
  EXPECT_EQ(L"CN=3", SubjectOf(certificateAt(2)));
}

TEST_P(ObjectOutputTest, ObjectsAreHeldByTheArrayAlone) {
  answer({CertificateOf("CN=1")});
  EXPECT_OK(run());
  Ptr<IDispatch> object = ObjectsOf(results).at(0);
  Ptr<ICertificate> certificate = certificateAt(0);
  results = Variant();
  EXPECT_EQ(areStatuses() ? 1u : 2u, object.references());
  object.reset();
  EXPECT_EQ(1u, certificate.references());
}

TEST_P(ObjectOutputTest, FormerResultsAreReplaced) {
  answer({CertificateOf("CN=1"), CertificateOf("CN=2")});
  EXPECT_OK(run());
  answer({CertificateOf("CN=3")});
  EXPECT_OK(run());
  ASSERT_EQ(1u, ObjectsOf(results).size());
  EXPECT_EQ(L"CN=3", SubjectOf(certificateAt(0)));
}

TEST_P(ObjectOutputTest, ResultIsGivenBackToTheSameRecordBeforeTheVariantIsSet) {
  VARTYPE during = VT_EMPTY;
  engine().on(release()).during = [&] { during = results.type(); };
  EXPECT_OK(run());
  EXPECT_EQ(VT_BSTR, during);
  const fake::Argument& result = engine().only(GetParam().function).argument(GetParam().argument);
  EXPECT_EQ(result.value, engine().only(release()).value(1));
}

TEST_P(ObjectOutputTest, ResultIsZeroBeforeTheCall) {
  EXPECT_OK(run());
  const fake::Snapshot& result = engine().only(GetParam().function).record(GetParam().argument);
  EXPECT_EQ(0, result.i32(0));
  EXPECT_EQ(0u, result.pointer(8));
}

TEST_P(ObjectOutputTest, FailingCreationIsReturnedMappedAndLeavesTheVariant) {
  answer({CertificateOf("CN=1"), CertificateOf("CN=2")});
  for (int succeeding : {0, 1}) {
    SubstituteFactory factory(areStatuses() ? __uuidof(SignStatus) : __uuidof(Certificate));
    factory.failAfter(succeeding, E_ACCESSDENIED);
    engine().forgetCalls();
    EXPECT_HR(kAccessDenied, run());
    EXPECT_EQ(L"before", TextOf(results));
    EXPECT_EQ(1u, engine().count(release()));
  }
}

TEST_P(ObjectOutputTest, ArrayThatCannotBeCreatedIsReported) {
  answer({CertificateOf("CN=1")});
  reply().during = [] { MallocSpy::get().failAllocation(0); };
  EXPECT_HR(kOutOfMemory, run());
  EXPECT_EQ(L"before", TextOf(results));
  EXPECT_EQ(1u, engine().count(release()));
}

TEST_P(ObjectOutputTest, VariantThatCannotBeClearedIsReported) {
  LockedVariant locked;
  EXPECT_HR(DISP_E_ARRAYISLOCKED, GetParam().call(objects, &locked.value));
  EXPECT_EQ(kObjectArray, V_VT(&locked.value));
}

INSTANTIATE_TEST_SUITE_P(Methods, ObjectOutputTest, ::testing::ValuesIn(OutputsOf(Output::kObjects)),
                         NameOfRow<OperationArgument>);

class StatusOutputTest : public ObjectOutputTest {};

TEST_P(StatusOutputTest, RejectedSignaturesAreReturnedToo) {
  for (const auto& [code, expected] : {std::pair{0x19, 0xE0690019u}, {1, 1u}}) {
    engine().forgetCalls();
    reply().result = code;
    reply().signatures = {{0, 0, CertificateOf("CN=good")}, {0x19, 0, {}}};
    EXPECT_HR(expected, run());
    ASSERT_EQ(2u, ObjectsOf(results).size());
    long status = 0;
    EXPECT_OK(ObjectsOf<ISignStatus>(results)[1]->get_status(&status));
    EXPECT_EQ(0x19, status);
    EXPECT_EQ(1u, engine().count(release()));
  }
}

TEST_P(StatusOutputTest, EngineCodeWinsOverAFailureOfTheResults) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, E_NOINTERFACE);
  reply().result = 0x19;
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(0xE0690019, run());
  EXPECT_EQ(L"before", TextOf(results));
  EXPECT_EQ(1u, engine().count(release()));
}

INSTANTIATE_TEST_SUITE_P(Methods, StatusOutputTest,
                         ::testing::ValuesIn(Where(OutputsOf(Output::kObjects),
                                                   [](const auto& row) { return row.function != "QUIVO_FindCert"; })),
                         NameOfRow<OperationArgument>);

}  // namespace
