// Values of other types than a property's own, through IDispatch.
#include "support/invoke.h"
#include "support/records.h"

namespace {

using LateBoundPropertyTest = ContractTest;

long NumberOf(const LateResult& outcome) {
  EXPECT_OK(outcome.result);
  EXPECT_EQ(VT_I4, outcome.value.type());
  return V_I4(&outcome.value.get());
}

TEST_F(LateBoundPropertyTest, NumbersOfScriptsAreConverted) {
  Ptr<IVerifyParam> param = Make<IVerifyParam>();
  Variant shortNumber = Variant::number(5), real, text = Variant::text(L"7");
  V_VT(shortNumber.out()) = VT_I2;
  V_VT(real.out()) = VT_R8;
  V_R8(real.out()) = 6.0;
  EXPECT_OK(PutProperty(param, L"minsigns", shortNumber).result);
  EXPECT_EQ(5, NumberOf(GetProperty(param, L"minsigns")));
  EXPECT_OK(PutProperty(param, L"minsigns", real).result);
  EXPECT_EQ(6, NumberOf(GetProperty(param, L"minsigns")));
  EXPECT_OK(PutProperty(param, L"minsigns", text).result);
  EXPECT_EQ(7, NumberOf(GetProperty(param, L"minsigns")));
}

TEST_F(LateBoundPropertyTest, NothingIsSetByReference) {
  Ptr<ISignParam> param = Make<ISignParam>();
  EXPECT_OK(param->putref_mycert(Make<ICertId>()));
  EXPECT_OK(PutRefProperty(param, L"mycert", Variant::object(nullptr)).result);
  const LateResult read = GetProperty(param, L"mycert");
  ASSERT_EQ(VT_DISPATCH, read.value.type());
  EXPECT_EQ(nullptr, V_DISPATCH(&read.value.get()));
}

TEST_F(LateBoundPropertyTest, ReceiversOfAScriptAreAccepted) {
  Ptr<IEncryptParam> param = Make<IEncryptParam>();
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_subject(Bstr(L"x")));
  Variant array = VariantArray({Variant::object(certificate)});
  Variant variable = ByRefArray(array);
  EXPECT_OK(PutProperty(param, L"Receivers", ByRef(variable)).result);
  EXPECT_EQ("x", RecordOf(param.get()).at(24).text(24));
}

TEST_F(LateBoundPropertyTest, FailureIsTheExceptionOfTheCall) {
  const LateResult refused = PutProperty(Make<ICertId>(), L"issuer", Variant::text(L"x"));
  EXPECT_HR(DISP_E_EXCEPTION, refused.raw);
  EXPECT_HR(E_INVALIDARG, refused.result);
}

TEST_F(LateBoundPropertyTest, WrongObjectIsATypeMismatch) {
  const LateResult refused = PutRefProperty(Make<ISignParam>(), L"mycert", Variant::object(Make<IPolicy>()));
  EXPECT_TRUE(FAILED(refused.result));
  const LateResult text = PutRefProperty(Make<ISignParam>(), L"mycert", Variant::text(L"x"));
  EXPECT_HR(DISP_E_TYPEMISMATCH, text.result);
}

TEST_F(LateBoundPropertyTest, MethodCannotBeAssigned) {
  EXPECT_TRUE(FAILED(PutProperty(Make<IQUIVO>(), L"Uninitialize", Variant::number(1)).result));
}

}  // namespace
