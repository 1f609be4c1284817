// The base of the file-open entry's tests: an object of the test's under the name that the entry asks for.
#pragma once

#include <memory>

#include "contract/legacy/legacy_test.h"

constexpr const wchar_t* kProgId = L"PKI.pkiobj";
constexpr CLSID kDoubleId = {0x2b1f5d0a, 0x5c1e, 0x4d3a, {0x9a, 0x44, 0x1d, 0x6e, 0x20, 0x11, 0x73, 0x5c}};

/// Stands in for the legacy object: writes its calls down and answers as programmed.
class ObjectDouble final : public Ipkiobj, public IClassFactory {
 public:
  std::vector<std::wstring> calls;
  std::map<std::wstring, std::vector<HRESULT>> answers;
  std::function<void()> onRelease;
  int references = 0;
  int created = 0;

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    *out = nullptr;
    if (iid == IID_IUnknown || iid == IID_IClassFactory) *out = static_cast<IClassFactory*>(this);
    if (iid == __uuidof(Ipkiobj)) *out = static_cast<Ipkiobj*>(this);
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
  STDMETHODIMP_(ULONG) Release() override {
    if (onRelease) onRelease();
    return static_cast<ULONG>(--references);
  }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** out) override {
    ++created;
    return QueryInterface(iid, out);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_FAIL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_FAIL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_FAIL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override { return E_FAIL; }

  STDMETHODIMP Init(BSTR profile) override { return answer(L"Init", profile); }
  STDMETHODIMP Uninit() override { return answer(L"Uninit"); }
  STDMETHODIMP Sign(BSTR in, BSTR out, LONG) override { return answer(L"Sign", in, out); }
  STDMETHODIMP Verify(BSTR in, BSTR out) override { return answer(L"Verify", in, out); }
  STDMETHODIMP Encrypt(BSTR in, BSTR out) override { return answer(L"Encrypt", in, out); }
  STDMETHODIMP Unencrypt(BSTR in, BSTR out, LONG show) override {
    return answer(show == 0 ? L"Unencrypt" : show == 1 ? L"UnencryptAndShow" : L"UnencryptOtherwise", in, out);
  }
  STDMETHODIMP SignAndEncrypt(BSTR in, BSTR out) override { return answer(L"SignAndEncrypt", in, out); }
  STDMETHODIMP VerifyAndUnencrypt(BSTR in, BSTR out) override { return answer(L"VerifyAndUnencrypt", in, out); }
  STDMETHODIMP SetRecipients(BSTR) override { return answer(L"SetRecipients"); }
  STDMETHODIMP IsSigned(BSTR) override { return answer(L"IsSigned"); }
  STDMETHODIMP AddRecipDERCert(BSTR) override { return answer(L"AddRecipDERCert"); }
  STDMETHODIMP FreeRecipCerts() override { return answer(L"FreeRecipCerts"); }

 private:
  HRESULT answer(const std::wstring& method, BSTR first = nullptr, BSTR second = nullptr) {
    std::wstring call = method;
    if (first != nullptr) call += L" " + std::wstring(first);
    if (second != nullptr) call += L" -> " + std::wstring(second);
    calls.push_back(call);
    auto& queue = answers[method];
    if (queue.empty()) return S_OK;
    const HRESULT next = queue.front();
    queue.erase(queue.begin());
    return next;
  }
};

class FileOpenTest : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    folder = std::wstring(temp) + L"открытие " + std::to_wstring(GetCurrentProcessId());
    CreateDirectoryW(folder.c_str(), nullptr);
    CoRegisterClassObject(kDoubleId, static_cast<IClassFactory*>(&object), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                          &cookie_);
    LPOLESTR text = nullptr;
    StringFromCLSID(kDoubleId, &text);
    WriteKey(HKEY_LOCAL_MACHINE, progIdKey() + L"\\CLSID", text);
    CoTaskMemFree(text);
    machine = std::make_unique<PrivateRoot>(HKEY_LOCAL_MACHINE);
    user = std::make_unique<PrivateRoot>(HKEY_CURRENT_USER);
  }
  void TearDown() override {
    user.reset();
    machine.reset();
    DeleteTree(HKEY_LOCAL_MACHINE, progIdKey());
    CoRevokeClassObject(cookie_);
    EXPECT_EQ(0, object.references);
    for (const std::wstring& file : files_) DeleteFileW(file.c_str());
    RemoveDirectoryW((folder + L"\\P7S").c_str());
    EXPECT_TRUE(RemoveDirectoryW(folder.c_str())) << "files were left behind";
    ContractTest::TearDown();
  }

  static std::wstring progIdKey() { return std::wstring(L"SOFTWARE\\Classes\\") + kProgId; }
  std::wstring path(const std::wstring& name) { return folder + L"\\" + name; }
  std::wstring create(const std::wstring& name) {
    files_.push_back(path(name));
    CloseHandle(CreateFileW(path(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    return path(name);
  }
  void open(const std::wstring& file) {
    std::string line = AnsiOf(file);
    entry()(nullptr, nullptr, line.data(), SW_SHOW);
  }
  using Entry = void(CALLBACK*)(HWND, HINSTANCE, LPSTR, int);
  Entry entry() { return Module::get().entry<Entry>("FileOpen"); }

  void setExecuteResult(DWORD value) { WriteDword(HKEY_LOCAL_MACHINE, kLegacyKey, L"ExecuteResult", value); }
  std::wstring rememberedFolder() {
    const RegistryTree tree = ReadTree(HKEY_CURRENT_USER, kLegacyKey);
    const auto found = tree.find(L":InputDirectory");
    return found == tree.end() ? L"(none)" : found->second;
  }
  using Calls = std::vector<std::wstring>;

  ObjectDouble object;
  std::unique_ptr<PrivateRoot> machine;
  std::unique_ptr<PrivateRoot> user;
  LegacyDesktop desktop;
  std::wstring folder;

 private:
  std::vector<std::wstring> files_;
  DWORD cookie_ = 0;
};
