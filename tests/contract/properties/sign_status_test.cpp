// The signature status object, and the array of them that a verification result becomes.
#include "support/certificates.h"
#include "support/class_objects.h"
#include "support/foreign_object.h"
#include "support/malloc_spy.h"
#include "support/records.h"

namespace {

using SignStatusTest = ContractTest;

DATE TimeOf(ISignStatus* status) {
  DATE time = -1;
  EXPECT_OK(status->get_time(&time));
  return time;
}

long StatusOf(ISignStatus* status) {
  long value = -1;
  EXPECT_OK(status->get_status(&value));
  return value;
}

Ptr<ICertificate> CertOf(ISignStatus* status) {
  Ptr<ICertificate> cert;
  EXPECT_OK(status->get_cert(cert.out()));
  return cert;
}

TEST_F(SignStatusTest, NewObjectIsZero) {
  Ptr<ISignStatus> status = Make<ISignStatus>();
  EXPECT_EQ(0, StatusOf(status));
  EXPECT_EQ(25569.0, TimeOf(status));
  EXPECT_EQ(nullptr, CertOf(status).get());
}

TEST_F(SignStatusTest, AnyStatusIsKept) {
  Ptr<ISignStatus> status = Make<ISignStatus>();
  for (long value : {1L, static_cast<long>(0xE0700019), -1L, 0L}) {
    EXPECT_OK(status->put_status(value));
    EXPECT_EQ(value, StatusOf(status));
  }
}

TEST_F(SignStatusTest, SettingTheTimeStoresNothing) {
  Ptr<ISignStatus> status = Make<ISignStatus>();
  EXPECT_OK(status->put_time(40968.5));
  EXPECT_EQ(25569.0, TimeOf(status));
}

TEST_F(SignStatusTest, TimeOutOfRangeIsRefused) {
  Ptr<ISignStatus> status = Make<ISignStatus>();
  EXPECT_HR(0x80070057u, status->put_time(2958466.0));
  EXPECT_HR(0x80070057u, status->put_time(-657435.0));
}

TEST_F(SignStatusTest, TimeThatIsNoUnixTimeIsRefused) { EXPECT_HR(0x80070057u, Make<ISignStatus>()->put_time(0.0)); }

TEST_F(SignStatusTest, CertificateIsHeldAndGivenBack) {
  Ptr<ISignStatus> status = Make<ISignStatus>();
  Ptr<ICertificate> first = Make<ICertificate>(), second = Make<ICertificate>();
  EXPECT_OK(status->putref_cert(first));
  EXPECT_EQ(first.get(), CertOf(status).get());
  EXPECT_GT(first.references(), 1u);
  EXPECT_OK(status->putref_cert(second));
  EXPECT_EQ(1u, first.references());
  EXPECT_EQ(second.get(), CertOf(status).get());
}

TEST_F(SignStatusTest, NothingReadsAsNothing) {
  Ptr<ISignStatus> status = Make<ISignStatus>();
  EXPECT_OK(status->putref_cert(Make<ICertificate>()));
  EXPECT_OK(status->putref_cert(nullptr));
  EXPECT_EQ(nullptr, CertOf(status).get());
}

TEST_F(SignStatusTest, ForeignCertificateIsRefusedUntouched) {
  Ptr<ISignStatus> status = Make<ISignStatus>();
  ForeignObject foreign;
  EXPECT_HR(E_INVALIDARG, status->putref_cert(foreign.as<ICertificate>()));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
}

TEST_F(SignStatusTest, NullPointersForTheValuesAreRefused) {
  Ptr<ISignStatus> status = Make<ISignStatus>();
  EXPECT_HR(E_POINTER, status->get_status(nullptr));
  EXPECT_HR(E_POINTER, status->get_time(nullptr));
  EXPECT_HR(E_POINTER, status->get_cert(nullptr));
}

class SignStatusArrayTest : public ContractTest {
 protected:
  fake::Reply& reply() { return engine().on("QUIVO_VerifyMem"); }
  HRESULT verify() {
    Ptr<IQUIVO> quivo = openQuivo();
    Ptr<IVerifyParam> param = Make<IVerifyParam>();
    return quivo->VerifyMem(param, Variant(), Variant(), Variant().out(), results.out());
  }
  std::vector<Ptr<ISignStatus>> statuses() { return ObjectsOf<ISignStatus>(results); }

  Variant results = Variant::text(L"before");
};

TEST_F(SignStatusArrayTest, EntriesAreInOrder) {
  reply().signatures = {{0, 86400, {}}, {static_cast<int32_t>(0xE0700019), 0, {}}, {7, 0xFFFFFFFF, {}}};
  EXPECT_OK(verify());
  ASSERT_EQ(3u, statuses().size());
  EXPECT_EQ(0, StatusOf(statuses()[0]));
  EXPECT_DOUBLE_EQ(25570.0, TimeOf(statuses()[0]));
  EXPECT_EQ(static_cast<long>(0xE0700019), StatusOf(statuses()[1]));
  EXPECT_EQ(25569.0, TimeOf(statuses()[1]));
  EXPECT_EQ(7, StatusOf(statuses()[2]));
  EXPECT_GT(TimeOf(statuses()[2]), 75279.0);
}

TEST_F(SignStatusArrayTest, EntryWithoutACertificateHasNone) {
  reply().signatures = {{0, 0, {}}};
  EXPECT_OK(verify());
  ASSERT_EQ(1u, statuses().size());
  EXPECT_EQ(nullptr, CertOf(statuses()[0]).get());
}

TEST_F(SignStatusArrayTest, SigningTimeCannotBeChanged) {
  reply().signatures = {{0, 86400, {}}};
  EXPECT_OK(verify());
  Ptr<ISignStatus> status = statuses().at(0);
  EXPECT_OK(status->put_time(40000.0));
  EXPECT_DOUBLE_EQ(25570.0, TimeOf(status));
}

TEST_F(SignStatusArrayTest, ObjectsAreCreatedThroughCom) {
  SubstituteFactory factory(__uuidof(SignStatus)), certificates(__uuidof(Certificate));
  reply().signatures = {{0, 0, CertificateOf("CN=x")}, {0, 0, {}}};
  EXPECT_OK(verify());
  EXPECT_EQ(2, factory.created());
  EXPECT_EQ(1, certificates.created());
  EXPECT_TRUE(factory.asked() == __uuidof(ISignStatus));
}

TEST_F(SignStatusArrayTest, FailingCertificateLeavesTheVariant) {
  SubstituteFactory factory(__uuidof(AltName));
  factory.failAfter(1, static_cast<HRESULT>(0x80070005));
  reply().signatures = {{0, 0, CertificateOf("CN=x")}};
  EXPECT_HR(kAccessDenied, verify());
  EXPECT_EQ(L"before", TextOf(results));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

}  // namespace
