// The `mycert` property of the seven parameter classes.
#include "contract/properties/records.h"
#include "support/foreign_object.h"

namespace {

struct MycertProperty {
  const char* name;
  Ptr<IDispatch> (*make)();
  HRESULT (*get)(IDispatch*, ICertId**);
  HRESULT (*put)(IDispatch*, ICertId*);
  fake::Snapshot (*record)(IDispatch*);
};

template <class Class>
MycertProperty rowFor(const char* name) {
  using Interface = typename InterfaceOf<Class>::type;
  return {name, [] { return make<Class>().template as<IDispatch>(); },
          [](IDispatch* object, ICertId** value) { return static_cast<Interface*>(object)->get_mycert(value); },
          [](IDispatch* object, ICertId* value) { return static_cast<Interface*>(object)->putref_mycert(value); },
          [](IDispatch* object) { return recordOf(static_cast<Interface*>(object)); }};
}

void PrintTo(const MycertProperty& row, std::ostream* out) { *out << row.name; }

Ptr<ICertId> idWithKey(const wchar_t* key) {
  Ptr<ICertId> id = make<CertId>();
  EXPECT_OK(id->put_type(Id_KeyId));
  EXPECT_OK(id->put_keyId(Bstr(key)));
  return id;
}

class MycertTest : public ContractTest, public ::testing::WithParamInterface<MycertProperty> {
 protected:
  void SetUp() override { object_ = GetParam().make(); }
  HRESULT put(ICertId* id) { return GetParam().put(object_, id); }
  Ptr<ICertId> get() {
    Ptr<ICertId> id;
    EXPECT_OK(GetParam().get(object_, id.out()));
    return id;
  }
  void release() { object_.reset(); }
  fake::Snapshot record() { return GetParam().record(object_); }
  std::string engineKey() { return record().at(8).text(8); }

 private:
  Ptr<IDispatch> object_;
};

TEST_P(MycertTest, NewObjectHasNone) {
  EXPECT_EQ(nullptr, get().get());
  EXPECT_EQ(0u, record().pointer(8));
}

TEST_P(MycertTest, AssignedObjectIsTheOneThatIsRead) {
  Ptr<ICertId> id = idWithKey(L"key");
  EXPECT_OK(put(id));
  EXPECT_EQ(id.get(), get().get());
}

TEST_P(MycertTest, ReferencesAreHeldAndGivenBack) {
  Ptr<ICertId> id = idWithKey(L"key");
  EXPECT_OK(put(id));
  const ULONG held = id.references();
  EXPECT_GT(held, 1u);
  get();
  EXPECT_EQ(held, id.references());
  release();
  EXPECT_EQ(1u, id.references());
}

TEST_P(MycertTest, EngineReadsTheRecordInsideTheIdentifier) {
  Ptr<ICertId> id = idWithKey(L"key");
  EXPECT_OK(put(id));
  EXPECT_EQ(recordOf(id.get()).address, record().pointer(8));
  EXPECT_EQ("key", engineKey());
}

TEST_P(MycertTest, LaterChangeOfTheIdentifierIsSeen) {
  Ptr<ICertId> id = idWithKey(L"key");
  EXPECT_OK(put(id));
  EXPECT_OK(id->put_keyId(Bstr(L"changed")));
  EXPECT_EQ("changed", engineKey());
}

TEST_P(MycertTest, IdentifierLivesAsLongAsItIsHeld) {
  EXPECT_OK(put(idWithKey(L"key")));
  EXPECT_EQ("key", engineKey());
}

TEST_P(MycertTest, AnotherObjectReplacesTheFirst) {
  Ptr<ICertId> first = idWithKey(L"first"), second = idWithKey(L"second");
  EXPECT_OK(put(first));
  EXPECT_OK(put(second));
  EXPECT_EQ(1u, first.references());
  EXPECT_EQ("second", engineKey());
}

TEST_P(MycertTest, NothingReadsAsNothingWhileTheEngineSeesTheEarlier) {
  EXPECT_OK(put(idWithKey(L"earlier")));
  EXPECT_OK(put(nullptr));
  EXPECT_EQ(nullptr, get().get());
  EXPECT_EQ("earlier", engineKey());
}

TEST_P(MycertTest, AssignmentAfterNothingIsSeen) {
  EXPECT_OK(put(idWithKey(L"earlier")));
  EXPECT_OK(put(nullptr));
  Ptr<ICertId> later = idWithKey(L"later");
  EXPECT_OK(put(later));
  EXPECT_EQ(later.get(), get().get());
  EXPECT_EQ("later", engineKey());
}

TEST_P(MycertTest, NothingInAFreshObjectIsNothing) {
  EXPECT_OK(put(nullptr));
  EXPECT_EQ(0u, record().pointer(8));
}

TEST_P(MycertTest, SameObjectCanBeAssignedAgain) {
  Ptr<ICertId> id = idWithKey(L"key");
  EXPECT_OK(put(id));
  const ULONG held = id.references();
  EXPECT_OK(put(id));
  EXPECT_EQ(held, id.references());
  EXPECT_EQ("key", engineKey());
}

TEST_P(MycertTest, ForeignObjectIsRefusedUntouched) {
  Ptr<ICertId> id = idWithKey(L"kept");
  EXPECT_OK(put(id));
  ForeignObject foreign;
  EXPECT_HR(E_INVALIDARG, put(foreign.as<ICertId>()));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
  EXPECT_EQ(id.get(), get().get());
  EXPECT_EQ("kept", engineKey());
}

TEST_P(MycertTest, ObjectOfAnotherClassIsRefused) {
  Ptr<ISignParam> wrong = make<SignParam>();
  EXPECT_HR(E_INVALIDARG, put(reinterpret_cast<ICertId*>(wrong.get())));
  EXPECT_EQ(1u, wrong.references());
  EXPECT_EQ(0u, record().pointer(8));
}

TEST_P(MycertTest, NullPointerForTheValueIsRefused) {
  Ptr<IDispatch> object = GetParam().make();
  EXPECT_HR(E_POINTER, GetParam().get(object, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Classes, MycertTest,
                         ::testing::Values(rowFor<SignParam>("SignParam"), rowFor<VerifyParam>("VerifyParam"),
                                           rowFor<EncryptParam>("EncryptParam"), rowFor<DecryptParam>("DecryptParam"),
                                           rowFor<FindParam>("FindParam"), rowFor<ExportParam>("ExportParam"),
                                           rowFor<ImportParam>("ImportParam")),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
