// Objects in the arguments of operations: only the module's own, of the right class, in either of their forms.
#include "support/foreign_object.h"
#include "support/object_safety.h"
#include "support/operations.h"
#include "support/outer_object.h"
#include "support/records.h"

namespace {

class ForeignObjectTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  HRESULT pass(const void* object) { return GetParam().call(objects, object); }

  /// The class that belongs here.
  const CoClass& expected() {
    const std::string pointer = GetParam().declared().type, interfaceName = pointer.substr(0, pointer.size() - 1);
    return ClassOf(interfaceName);
  }

  Objects objects{openQuivo()};
};

TEST_P(ForeignObjectTest, ForeignObjectIsRefusedUntouched) {
  ForeignObject foreign;
  EXPECT_HR(kInvalidArgument, pass(foreign.as<void>()));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_P(ForeignObjectTest, ObjectOfAnotherClassIsRefused) {
  for (const CoClass& coclass : Classes()) {
    if (coclass.name == expected().name) continue;
    Ptr<IUnknown> wrong = MakeUnknown(coclass.clsid, coclass.iid);
    EXPECT_HR(kInvalidArgument, pass(wrong.get())) << coclass;
  }
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

TEST_P(ForeignObjectTest, ObjectOfTheRightClassIsAccepted) {
  Ptr<IUnknown> right = MakeUnknown(expected().clsid, expected().iid);
  EXPECT_OK(pass(right.get()));
}

TEST_P(ForeignObjectTest, AggregatedObjectOfTheRightClassIsAccepted) {
  OuterObject outer(FactoryOf(expected().clsid));
  ASSERT_OK(outer.created);
  Ptr<IUnknown> right;
  ASSERT_OK(outer.inner->QueryInterface(expected().iid, right.voidOut()));
  EXPECT_OK(pass(right.get()));
}

INSTANTIATE_TEST_SUITE_P(Arguments, ForeignObjectTest, ::testing::ValuesIn(ObjectInputs()),
                         NameOfRow<OperationArgument>);

using AggregatedArgumentTest = ContractTest;

/// The interface of an aggregated object, and what has to live as long.
template <class Interface>
struct Aggregated {
  OuterObject outer{FactoryOf(ClassOf(__uuidof(Interface)).clsid)};
  Ptr<Interface> object = outer.inner.template as<Interface>();
};

TEST_F(AggregatedArgumentTest, EngineReadsTheRecordOfAnAggregatedObject) {
  Aggregated<ICertId> id;
  EXPECT_OK(id.object->put_type(Id_KeyId));
  EXPECT_OK(id.object->put_keyId(Bstr(L"key")));
  EXPECT_EQ("key", RecordOf(id.object.get()).text(8));
}

TEST_F(AggregatedArgumentTest, AggregatedObjectsAreAcceptedAsProperties) {
  Aggregated<ICertId> id;
  Aggregated<ICertificate> certificate;
  Aggregated<IAltName> name;
  Aggregated<IPolicy> policy;
  EXPECT_OK(Make<ISignParam>()->putref_mycert(id.object));
  EXPECT_OK(Make<IFindParam>()->putref_certTemplate(certificate.object));
  EXPECT_OK(Make<ICertificate>()->putref_issuerAltName(name.object));
  EXPECT_OK(Make<IVerifyParam>()->put_policies(ObjectArray({policy.object})));
  EXPECT_OK(Make<IEncryptParam>()->put_Receivers(VariantArray({Variant::object(certificate.object)})));
}

TEST_F(AggregatedArgumentTest, AggregatedParametersOpenASession) {
  Aggregated<ILocalParam> local;
  EXPECT_OK(Make<IQUIVO>()->InitializeEx(local.object));
  Aggregated<IRSrvParam> remote;
  EXPECT_OK(Make<IQUIVO>()->InitializeEx(remote.object));
}

TEST_F(AggregatedArgumentTest, AggregatedMainObjectNegotiatesSafety) {
  Aggregated<IQUIVO> quivo;
  Ptr<IObjectSafety> safety = quivo.outer.inner.as<IObjectSafety>();
  ASSERT_NE(nullptr, safety.get());
  EXPECT_OK(safety->SetInterfaceSafetyOptions(IID_IDispatch, 2, 2));
  EXPECT_HR(kAccessDenied, quivo.object->HashFile(Bstr(L"x"), Variant().out()));
  EXPECT_EQ(static_cast<IUnknown*>(&quivo.outer), safety.as<IUnknown>().get());
}

TEST_F(AggregatedArgumentTest, AggregatedMainObjectWorks) {
  Aggregated<IQUIVO> quivo;
  EXPECT_OK(quivo.object->InitMinimal());
  Variant text;
  EXPECT_OK(quivo.object->GetPKIErrorTextVBS(static_cast<long>(0xE0680001), text.out()));
  EXPECT_EQ(VT_BSTR, text.type());
}

}  // namespace
