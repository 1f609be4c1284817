// Opening a session by a parameter object.
#include "support/contract_test.h"
#include "support/foreign_object.h"

namespace {

using InitializeExTest = ContractTest;

const fake::Call& OpenedBy(fake::FakeEngine& engine) { return engine.only("QUIVO_InitializeEx"); }

TEST_F(InitializeExTest, LocalParametersAreKindOne) {
  Ptr<ILocalParam> param = Make<ILocalParam>();
  EXPECT_OK(param->put_pse(Bstr(L"container")));
  EXPECT_OK(Make<IQUIVO>()->InitializeEx(param));
  EXPECT_EQ(1, OpenedBy(engine()).number(0));
  EXPECT_EQ("container", OpenedBy(engine()).record(1).text(16));
  EXPECT_TRUE(OpenedBy(engine()).record(2).allZero());
}

TEST_F(InitializeExTest, RemoteParametersAreKindZero) {
  Ptr<IRSrvParam> param = Make<IRSrvParam>();
  EXPECT_OK(param->put_timeout(30));
  EXPECT_OK(Make<IQUIVO>()->InitializeEx(param));
  EXPECT_EQ(0, OpenedBy(engine()).number(0));
  EXPECT_EQ(30, OpenedBy(engine()).record(1).i32(12));
}

TEST_F(InitializeExTest, RecordIsReadInPlace) {
  Ptr<ILocalParam> param = Make<ILocalParam>();
  EXPECT_OK(Make<IQUIVO>()->InitializeEx(param));
  EXPECT_OK(Make<IQUIVO>()->InitializeEx(param));
  const uint64_t first = engine().calls().at(0).value(1);
  const auto object = reinterpret_cast<uint64_t>(static_cast<void*>(param.get()));
  EXPECT_EQ(first, engine().calls().at(2).value(1));
  EXPECT_GT(first, object);
  EXPECT_LT(first, object + 64);
}

TEST_F(InitializeExTest, HandleIsStored) {
  engine().on("QUIVO_InitializeEx").handle = reinterpret_cast<void*>(0x4444);
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  EXPECT_OK(quivo->InitializeEx(Make<ILocalParam>()));
  EXPECT_OK(quivo->ShowCrl(Variant()));
  EXPECT_EQ(0x4444u, engine().only("QUIVO_ShowCrl").value(0));
}

TEST_F(InitializeExTest, EveryOtherClassIsRefused) {
  for (const CoClass& coclass : Classes()) {
    if (coclass.name == "LocalParam" || coclass.name == "RSrvParam") continue;
    Ptr<IDispatch> param = MakeUnknown(coclass.clsid, IID_IDispatch).as<IDispatch>();
    EXPECT_HR(kInvalidArgument, Make<IQUIVO>()->InitializeEx(param)) << coclass;
  }
  EXPECT_EQ(0u, engine().count("QUIVO_InitializeEx"));
}

TEST_F(InitializeExTest, NullObjectIsRefused) { EXPECT_HR(kInvalidArgument, Make<IQUIVO>()->InitializeEx(nullptr)); }

TEST_F(InitializeExTest, ObjectWithoutTypeInformationGivesItsFailure) {
  LookAlike param(nullptr, E_NOTIMPL);
  EXPECT_HR(E_NOTIMPL, Make<IQUIVO>()->InitializeEx(&param));
  EXPECT_EQ(1u, param.references());
}

TEST_F(InitializeExTest, TypeInformationIsAskedForByTheFirstIndexAndNoLocale) {
  LookAlike param(nullptr);
  EXPECT_HR(E_NOTIMPL, Make<IQUIVO>()->InitializeEx(&param));
  EXPECT_EQ(0u, param.index());
  EXPECT_EQ(0u, param.locale());
}

TEST_F(InitializeExTest, FailureOfTheWin32FacilityIsRebased) {
  LookAlike param(nullptr, static_cast<HRESULT>(0x80070005));
  EXPECT_HR(0xE0690005, Make<IQUIVO>()->InitializeEx(&param));
}

TEST_F(InitializeExTest, ForeignObjectWithTheRightTypeInformationIsRefused) {
  Ptr<ITypeInfo> info;
  ASSERT_OK(Make<ILocalParam>()->GetTypeInfo(0, 0, info.out()));
  LookAlike param(info);
  EXPECT_HR(kInvalidArgument, Make<IQUIVO>()->InitializeEx(&param));
  EXPECT_EQ(0u, engine().count("QUIVO_InitializeEx"));
}

TEST_F(InitializeExTest, ForeignObjectOfAnotherKindIsRefused) {
  Ptr<ITypeInfo> info = TypeNamed(ModuleTypeLibrary(), "IQUIVO");
  LookAlike param(info);
  EXPECT_HR(kInvalidArgument, Make<IQUIVO>()->InitializeEx(&param));
}

/// Type information that belongs to nothing, and says that it does.
class LibrarylessInfo final : public ITypeInfo {
 public:
  STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeAttr(TYPEATTR**) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeComp(ITypeComp**) override { return E_NOTIMPL; }
  STDMETHODIMP GetFuncDesc(UINT, FUNCDESC**) override { return E_NOTIMPL; }
  STDMETHODIMP GetVarDesc(UINT, VARDESC**) override { return E_NOTIMPL; }
  STDMETHODIMP GetNames(MEMBERID, BSTR*, UINT, UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetRefTypeOfImplType(UINT, HREFTYPE*) override { return E_NOTIMPL; }
  STDMETHODIMP GetImplTypeFlags(UINT, INT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(LPOLESTR*, UINT, MEMBERID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(void*, MEMBERID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetDocumentation(MEMBERID, BSTR*, BSTR*, DWORD*, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, WORD*) override { return E_NOTIMPL; }
  STDMETHODIMP GetRefTypeInfo(HREFTYPE, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP AddressOfMember(MEMBERID, INVOKEKIND, void**) override { return E_NOTIMPL; }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID, void**) override { return E_NOTIMPL; }
  STDMETHODIMP GetMops(MEMBERID, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetContainingTypeLib(ITypeLib** library, UINT* index) override {
    *library = nullptr;
    *index = 0;
    return S_OK;
  }
  STDMETHODIMP_(void) ReleaseTypeAttr(TYPEATTR*) override {}
  STDMETHODIMP_(void) ReleaseFuncDesc(FUNCDESC*) override {}
  STDMETHODIMP_(void) ReleaseVarDesc(VARDESC*) override {}
};

TEST_F(InitializeExTest, NullLibraryOfTypeInformationIsRefused) {
  LibrarylessInfo info;
  LookAlike param(&info);
  EXPECT_HR(E_UNEXPECTED, Make<IQUIVO>()->InitializeEx(&param));
}

TEST_F(InitializeExTest, InterfaceWithoutANameGivesTheFailureOfItsConversion) {
  // Type information made by the platform belongs to a library of no name and no interfaces.
  METHODDATA method{};
  wchar_t name[] = L"method";
  method.szName = name;
  method.dispid = 1;
  method.wFlags = DISPATCH_METHOD;
  method.vtReturn = VT_EMPTY;
  INTERFACEDATA description{&method, 1};
  Ptr<ITypeInfo> info;
  ASSERT_OK(CreateDispTypeInfo(&description, LOCALE_NEUTRAL, info.out()));
  LookAlike param(info);
  EXPECT_HR(0x80070057u, Make<IQUIVO>()->InitializeEx(&param));
  EXPECT_EQ(1u, param.references());
}

TEST_F(InitializeExTest, NameThatCannotBeAllocatedIsReported) {
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  Ptr<ILocalParam> param = Make<ILocalParam>();
  Module::get().failAllocation(0);
  const HRESULT result = quivo->InitializeEx(param);
  if (Module::get().allocationFailed()) {
    EXPECT_HR(kOutOfMemory, result);
  } else {
    EXPECT_OK(result);
  }
}

}  // namespace
