// Objects of the module in the hands of a client whose thread is in the multithreaded apartment. The classes are
// apartment-threaded: the platform puts the objects into an apartment of their own and hands out proxies.
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>

#include <cstdlib>
#include <vector>

#include "quivocom.h"
#include "support/ptr.h"
#include "support/results.h"
#include "ui/user.h"

namespace {

constexpr int kOk = IDOK;
const wchar_t kAnna[] = L"Анна Петрова";

class Text {
 public:
  explicit Text(const std::wstring& text) : text_(SysAllocString(text.c_str())) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text() { SysFreeString(text_); }
  operator BSTR() const { return text_; }

 private:
  BSTR text_;
};

std::wstring Environment(const wchar_t* name) {
  wchar_t value[MAX_PATH] = {};
  GetEnvironmentVariableW(name, value, MAX_PATH);
  return value;
}

template <class Class, class Interface>
Ptr<Interface> Create() {
  Ptr<Interface> object;
  EXPECT_OK(CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), object.voidOut()));
  return object;
}

/// Every proxy answers several questions at once; no object of the module does.
bool IsProxy(IUnknown* object) {
  Ptr<IUnknown> manager;
  return SUCCEEDED(object->QueryInterface(IID_IMultiQI, manager.voidOut()));
}

/// The coclasses of the registered type library, with their default interfaces.
std::vector<std::pair<CLSID, IID>> RegisteredClasses() {
  std::vector<std::pair<CLSID, IID>> found;
  Ptr<ITypeLib> library;
  EXPECT_OK(LoadRegTypeLib(LIBID_QUIVOCOMLib, 1, 0, 0, library.out()));
  for (UINT i = 0; library.get() != nullptr && i < library->GetTypeInfoCount(); ++i) {
    Ptr<ITypeInfo> info, interfaceInfo;
    TYPEATTR* attributes = nullptr;
    library->GetTypeInfo(i, info.out());
    info->GetTypeAttr(&attributes);
    const CLSID clsid = attributes->guid;
    const bool isClass = attributes->typekind == TKIND_COCLASS;
    info->ReleaseTypeAttr(attributes);
    if (!isClass) continue;
    HREFTYPE reference = 0;
    info->GetRefTypeOfImplType(0, &reference);
    info->GetRefTypeInfo(reference, interfaceInfo.out());
    interfaceInfo->GetTypeAttr(&attributes);
    found.emplace_back(clsid, attributes->guid);
    interfaceInfo->ReleaseTypeAttr(attributes);
  }
  return found;
}

class MultithreadedTest : public ::testing::Test {
 protected:
  Ptr<IQUIVO> openQuivo() {
    Ptr<IQUIVO> quivo = Create<QUIVO, IQUIVO>();
    EXPECT_OK(quivo->Initialize(Text(kAnna), Flag_Init_Noldap));
    return quivo;
  }
};

TEST_F(MultithreadedTest, EveryClassIsCreated) {
  const auto all = RegisteredClasses();
  EXPECT_FALSE(all.empty());
  for (const auto& [clsid, iid] : all) {
    Ptr<IDispatch> object;
    EXPECT_OK(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object.voidOut()));
    ASSERT_NE(nullptr, object.get());
    EXPECT_TRUE(IsProxy(object));
    UINT count = 0;
    EXPECT_OK(object->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
  }
}

TEST_F(MultithreadedTest, PropertiesAreReadAndWritten) {
  Ptr<ISignParam> param = Create<SignParam, ISignParam>();
  Ptr<ICertId> id = Create<CertId, ICertId>();
  EXPECT_OK(param->put_flag(Flag_Sign_Detached));
  EXPECT_OK(param->putref_mycert(id));
  SignParamFlag_t flag{};
  Ptr<ICertId> held;
  EXPECT_OK(param->get_flag(&flag));
  EXPECT_OK(param->get_mycert(held.out()));
  EXPECT_EQ(Flag_Sign_Detached, flag);
  EXPECT_NE(nullptr, held.get());
}

TEST_F(MultithreadedTest, SessionIsOpenedByAParameterObject) {
  Ptr<ILocalParam> param = Create<LocalParam, ILocalParam>();
  EXPECT_OK(param->put_pse(Text(Environment(L"TAVL_PKI") + L"\\anna.p12")));
  EXPECT_OK(param->put_localstore(Text(Environment(L"TAVL_PKI") + L"\\store")));
  EXPECT_OK(param->put_pincode(Text(L"12345678")));
  Ptr<IQUIVO> quivo = Create<QUIVO, IQUIVO>();
  EXPECT_OK(quivo->InitializeEx(param));
  EXPECT_OK(quivo->Uninitialize());
}

TEST_F(MultithreadedTest, ObjectsOfASearchComeBack) {
  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IFindParam> param = Create<FindParam, IFindParam>();
  EXPECT_OK(param->put_flag(Flag_Find_My));
  EXPECT_OK(param->put_info(Field_Subject));
  VARIANT found{};
  EXPECT_OK(quivo->FindCert(param, &found));
  ASSERT_EQ(VT_ARRAY | VT_DISPATCH, V_VT(&found));
  LONG first = 0;
  Ptr<IDispatch> element;
  EXPECT_OK(SafeArrayGetElement(V_ARRAY(&found), &first, element.out()));
  Ptr<ICertificate> certificate = element.as<ICertificate>();
  ASSERT_NE(nullptr, certificate.get());
  BSTR subject = nullptr;
  EXPECT_OK(certificate->get_subject(&subject));
  EXPECT_NE(std::wstring::npos, std::wstring(subject).find(L"Анна"));
  SysFreeString(subject);
  VariantClear(&found);
}

/// Makes a parameter object in an apartment of its own and keeps it until its event is set.
struct OtherApartment {
  Ptr<ISignParam> proxy;
  DWORD cookie = 0;
  HANDLE ready = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  DWORD id = 0;
  HANDLE thread = CreateThread(nullptr, 0, run, this, 0, &id);
  Ptr<IGlobalInterfaceTable> table;

  static DWORD WINAPI run(void* argument) {
    auto& self = *static_cast<OtherApartment*>(argument);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
      Ptr<ISignParam> param = Create<SignParam, ISignParam>();
      EXPECT_FALSE(IsProxy(param));
      CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER, IID_IGlobalInterfaceTable,
                       self.table.voidOut());
      self.table->RegisterInterfaceInGlobal(param, __uuidof(ISignParam), &self.cookie);
      SetEvent(self.ready);
      MSG message;
      while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
      self.table->RevokeInterfaceFromGlobal(self.cookie);
    }
    CoUninitialize();
    return 0;
  }
  ~OtherApartment() {
    PostThreadMessageW(id, WM_QUIT, 0, 0);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, 10000));
    CloseHandle(thread);
    CloseHandle(ready);
  }
};

TEST_F(MultithreadedTest, ObjectOfAnotherApartmentIsRefused) {
  Ptr<IQUIVO> quivo = openQuivo();
  OtherApartment other;
  ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(other.ready, 10000));
  {
    Ptr<ISignParam> foreign;
    EXPECT_OK(other.table->GetInterfaceFromGlobal(other.cookie, __uuidof(ISignParam), foreign.voidOut()));
    VARIANT empty{}, signature{};
    EXPECT_HR(kInvalidArgument, quivo->SignMem(foreign, empty, empty, &signature));
  }
}

TEST_F(MultithreadedTest, SheetIsShownAndAccepted) {
  Ptr<Ipkiobj> object = Create<pkiobj, Ipkiobj>();
  EXPECT_TRUE(IsProxy(object));
  EXPECT_OK(object->Init(Text(kAnna)));
  wchar_t folder[MAX_PATH], result[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  GetTempFileNameW(folder, L"mta", 0, result);
  SeenWindow seen;
  HRESULT verified = E_UNEXPECTED;
  {
    User user(L"КОРВИС (x64)", LookAndPress(seen, kOk));
    verified = object->Verify(Text(Environment(L"TAVL_MESSAGES") + L"\\attached.p7s"), Text(result));
  }
  EXPECT_OK(verified);
  EXPECT_TRUE(seen.has(201));
  EXPECT_OK(object->Uninit());
  DeleteFileW(result);
}

}  // namespace

int main(int count, char** arguments) {
  ::testing::InitGoogleTest(&count, arguments);
  StartWatchdog(60);
  if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) return 1;
  const int result = RUN_ALL_TESTS();
  CoUninitialize();
  return result;
}
