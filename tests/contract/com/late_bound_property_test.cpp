// Properties through IDispatch.
#include "contract/properties/records.h"
#include "support/invoke.h"

namespace {

using LateBoundPropertyTest = ContractTest;

long numberOf(const LateResult& outcome) {
  EXPECT_OK(outcome.result);
  EXPECT_EQ(VT_I4, outcome.value.type());
  return V_I4(&outcome.value.get());
}

TEST_F(LateBoundPropertyTest, NumbersAreReadAndWritten) {
  Ptr<ISignParam> param = make<SignParam>();
  EXPECT_OK(putProperty(param, L"flag", Variant::number(3)).result);
  EXPECT_EQ(3, numberOf(getProperty(param, L"flag")));
  EXPECT_EQ(3u, recordOf(param.get()).u32(0));
}

TEST_F(LateBoundPropertyTest, NumbersOfScriptsAreConverted) {
  Ptr<IVerifyParam> param = make<VerifyParam>();
  Variant shortNumber = Variant::number(5), real, text = Variant::text(L"7");
  V_VT(shortNumber.out()) = VT_I2;
  V_VT(real.out()) = VT_R8;
  V_R8(real.out()) = 6.0;
  EXPECT_OK(putProperty(param, L"minsigns", shortNumber).result);
  EXPECT_EQ(5, numberOf(getProperty(param, L"minsigns")));
  EXPECT_OK(putProperty(param, L"minsigns", real).result);
  EXPECT_EQ(6, numberOf(getProperty(param, L"minsigns")));
  EXPECT_OK(putProperty(param, L"minsigns", text).result);
  EXPECT_EQ(7, numberOf(getProperty(param, L"minsigns")));
}

TEST_F(LateBoundPropertyTest, VariablesAreDereferenced) {
  Ptr<IVerifyParam> param = make<VerifyParam>();
  Variant variable = Variant::number(9);
  EXPECT_OK(putProperty(param, L"minsigns", byRef(variable)).result);
  EXPECT_EQ(9, numberOf(getProperty(param, L"minsigns")));
}

TEST_F(LateBoundPropertyTest, StringsAreReadAndWritten) {
  Ptr<ILocalParam> param = make<LocalParam>();
  Variant variable = Variant::text(L"значение");
  EXPECT_OK(putProperty(param, L"pse", byRef(variable)).result);
  const LateResult read = getProperty(param, L"pse");
  EXPECT_OK(read.result);
  EXPECT_EQ(L"значение", textOf(read.value));
}

TEST_F(LateBoundPropertyTest, DatesAreReadAndWritten) {
  Ptr<ICertificate> certificate = make<Certificate>();
  Variant date;
  V_VT(date.out()) = VT_DATE;
  V_DATE(date.out()) = 40968.5;
  EXPECT_OK(putProperty(certificate, L"notBefore", date).result);
  const LateResult read = getProperty(certificate, L"notBefore");
  EXPECT_EQ(VT_DATE, read.value.type());
  EXPECT_DOUBLE_EQ(40968.5, V_DATE(&read.value.get()));
}

TEST_F(LateBoundPropertyTest, ObjectsAreSetByReference) {
  Ptr<ISignParam> param = make<SignParam>();
  Ptr<ICertId> id = make<CertId>();
  EXPECT_OK(putRefProperty(param, L"mycert", Variant::object(id)).result);
  const LateResult read = getProperty(param, L"mycert");
  ASSERT_EQ(VT_DISPATCH, read.value.type());
  EXPECT_EQ(static_cast<IDispatch*>(id), V_DISPATCH(&read.value.get()));
}

TEST_F(LateBoundPropertyTest, ObjectVariablesAreSetByReference) {
  Ptr<ISignParam> param = make<SignParam>();
  Ptr<ICertId> id = make<CertId>();
  Variant variable = Variant::object(id);
  EXPECT_OK(putRefProperty(param, L"mycert", byRef(variable)).result);
  Ptr<ICertId> held;
  EXPECT_OK(param->get_mycert(held.out()));
  EXPECT_EQ(id.get(), held.get());
}

TEST_F(LateBoundPropertyTest, NothingIsSetByReference) {
  Ptr<ISignParam> param = make<SignParam>();
  EXPECT_OK(param->putref_mycert(make<CertId>()));
  EXPECT_OK(putRefProperty(param, L"mycert", Variant::object(nullptr)).result);
  const LateResult read = getProperty(param, L"mycert");
  ASSERT_EQ(VT_DISPATCH, read.value.type());
  EXPECT_EQ(nullptr, V_DISPATCH(&read.value.get()));
}

TEST_F(LateBoundPropertyTest, ArraysAreReadAndWritten) {
  Ptr<ICertificate> certificate = make<Certificate>();
  Variant array = bytes({1, 2});
  EXPECT_OK(putProperty(certificate, L"certHash", byRef(array)).result);
  const LateResult read = getProperty(certificate, L"certHash");
  EXPECT_EQ((Bytes{1, 2}), plainBytesOf(read.value));
}

TEST_F(LateBoundPropertyTest, ReceiversOfAScriptAreAccepted) {
  Ptr<IEncryptParam> param = make<EncryptParam>();
  Ptr<ICertificate> certificate = make<Certificate>();
  EXPECT_OK(certificate->put_subject(Bstr(L"x")));
  Variant array = variants({Variant::object(certificate)});
  Variant variable = byRefArray(array);
  EXPECT_OK(putProperty(param, L"Receivers", byRef(variable)).result);
  EXPECT_EQ("x", recordOf(param.get()).at(24).text(24));
}

TEST_F(LateBoundPropertyTest, FailureIsTheExceptionOfTheCall) {
  const LateResult refused = putProperty(make<CertId>(), L"issuer", Variant::text(L"x"));
  EXPECT_HR(DISP_E_EXCEPTION, refused.raw);
  EXPECT_HR(E_INVALIDARG, refused.result);
}

TEST_F(LateBoundPropertyTest, WrongObjectIsATypeMismatch) {
  const LateResult refused = putRefProperty(make<SignParam>(), L"mycert", Variant::object(make<Policy>()));
  EXPECT_TRUE(FAILED(refused.result));
  const LateResult text = putRefProperty(make<SignParam>(), L"mycert", Variant::text(L"x"));
  EXPECT_HR(DISP_E_TYPEMISMATCH, text.result);
}

TEST_F(LateBoundPropertyTest, MethodCannotBeAssigned) {
  EXPECT_TRUE(FAILED(putProperty(make<QUIVO>(), L"Uninitialize", Variant::number(1)).result));
}

}  // namespace
