// TavlTests.Arrays: an object for the script tests. Wine's script hosts open arrays of VARIANTs only; this one opens
// and makes the others, as the hosts of Windows do by themselves.
#include <windows.h>

#include <oleauto.h>

#include <fstream>
#include <iterator>
#include <string>

#include "harness/misbehave.h"

namespace {

// {6E0C52B8-2A3D-4C59-9C0B-5B0C0B6C7D11}, also in tools/register-arrays.
constexpr CLSID kClass = {0x6E0C52B8, 0x2A3D, 0x4C59, {0x9C, 0x0B, 0x5B, 0x0C, 0x0B, 0x6C, 0x7D, 0x11}};

const VARIANT* Dereference(const VARIANT* value) {
  while (V_VT(value) == (VT_BYREF | VT_VARIANT)) value = V_VARIANTREF(value);
  return value;
}

SAFEARRAY* ArrayOf(const VARIANT& value) {
  if (!(V_VT(&value) & VT_ARRAY)) return nullptr;
  return V_VT(&value) & VT_BYREF ? *V_ARRAYREF(&value) : V_ARRAY(&value);
}

LONG CountOf(const VARIANT& value) {
  SAFEARRAY* array = ArrayOf(value);
  return array ? static_cast<LONG>(array->rgsabound[0].cElements) : 0;
}

/// One element as a VARIANT of its own.
HRESULT ElementOf(const VARIANT& value, LONG index, VARIANT* element) {
  SAFEARRAY* array = ArrayOf(value);
  if (!array) return DISP_E_TYPEMISMATCH;
  LONG position = array->rgsabound[0].lLbound + index;
  VARTYPE type = V_VT(&value) & VT_TYPEMASK;
  VariantInit(element);
  if (type == VT_VARIANT) return SafeArrayGetElement(array, &position, element);
  HRESULT hr = SafeArrayGetElement(array, &position, &element->lVal);
  if (SUCCEEDED(hr)) V_VT(element) = type;
  return hr;
}

/// The bytes of an array of either form, or of a string in the ANSI code page, as scripts see bytes with Asc and Chr.
HRESULT BytesOf(const VARIANT& value, std::string* bytes) {
  if (V_VT(&value) == VT_BSTR) {
    int length = static_cast<int>(SysStringLen(V_BSTR(&value)));
    bytes->resize(length);
    return WideCharToMultiByte(CP_ACP, 0, V_BSTR(&value), length, bytes->data(), length, nullptr, nullptr) == length
               ? S_OK
               : E_INVALIDARG;
  }
  for (LONG i = 0; i < CountOf(value); ++i) {
    VARIANT element;
    HRESULT hr = ElementOf(value, i, &element);
    if (FAILED(hr)) return hr;
    if (V_VT(&element) != VT_UI1) {
      VariantClear(&element);
      return DISP_E_TYPEMISMATCH;
    }
    bytes->push_back(static_cast<char>(V_UI1(&element)));
  }
  return V_VT(&value) == VT_EMPTY || ArrayOf(value) ? S_OK : DISP_E_TYPEMISMATCH;
}

HRESULT ArrayFrom(const std::string& bytes, VARTYPE type, VARIANT* result) {
  SAFEARRAY* array = SafeArrayCreateVector(type, 0, static_cast<ULONG>(bytes.size()));
  if (!array) return E_OUTOFMEMORY;
  for (LONG i = 0; i < static_cast<LONG>(bytes.size()); ++i) {
    VARIANT element{};
    V_VT(&element) = VT_UI1;
    V_UI1(&element) = static_cast<BYTE>(bytes[i]);
    SafeArrayPutElement(array, &i, type == VT_VARIANT ? static_cast<void*>(&element) : &V_UI1(&element));
  }
  V_VT(result) = VT_ARRAY | type;
  V_ARRAY(result) = array;
  return S_OK;
}

HRESULT TextFrom(const std::string& bytes, VARIANT* result) {
  int length = static_cast<int>(bytes.size());
  V_VT(result) = VT_BSTR;
  V_BSTR(result) = SysAllocStringLen(nullptr, length);
  if (!V_BSTR(result)) return E_OUTOFMEMORY;
  return MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, V_BSTR(result), length) == length ? S_OK : E_INVALIDARG;
}

HRESULT Load(const VARIANT& path, VARIANT* result) {
  std::ifstream file(V_BSTR(&path), std::ios::binary);
  if (!file) return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
  return ArrayFrom({std::istreambuf_iterator<char>(file), {}}, VT_UI1, result);
}

HRESULT Save(const VARIANT& path, const VARIANT& value) {
  std::string bytes;
  HRESULT hr = BytesOf(value, &bytes);
  if (FAILED(hr)) return hr;
  std::ofstream file(V_BSTR(&path), std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.flush();
  return file ? S_OK : HRESULT_FROM_WIN32(ERROR_WRITE_FAULT);
}

enum Method : DISPID { kCount = 1, kItem, kBytes, kVariants, kText, kKind, kLoad, kSave, kMisbehave };

struct {
  const wchar_t* name;
  DISPID id;
  UINT arguments;
} constexpr kMethods[] = {
    {L"count", kCount, 1},          // how many elements
    {L"item", kItem, 2},            // (array, index from 0)
    {L"bytes", kBytes, 1},          // an array of bytes from a string or an array
    {L"variants", kVariants, 1},    // an array of VARIANTs with a byte each, from the same
    {L"text", kText, 1},            // a string with a character for each byte
    {L"kind", kKind, 1},            // the type of the VARIANT, which JScript cannot read
    {L"load", kLoad, 1},            // (path): the bytes of a file
    {L"save", kSave, 2},            // (path, bytes)
    {L"Misbehave", kMisbehave, 1},  // (how), for the test of the runner
};

class Arrays final : public IDispatch, public IClassFactory {
 public:
  // The one object and its factory live as long as the library, which is never unloaded.
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IClassFactory) *object = static_cast<IClassFactory*>(this);
    if (iid == IID_IDispatch || iid == IID_IUnknown) *object = static_cast<IDispatch*>(this);
    return *object ? S_OK : E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    return outer ? CLASS_E_NOAGGREGATION : QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    for (const auto& method : kMethods) {
      if (_wcsicmp(method.name, names[0]) != 0) continue;
      ids[0] = method.id;
      return S_OK;
    }
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    if (id < kCount || id > kMisbehave) return DISP_E_MEMBERNOTFOUND;
    if (params->cArgs != kMethods[id - 1].arguments) return DISP_E_BADPARAMCOUNT;
    const VARIANT& first = *Dereference(&params->rgvarg[params->cArgs - 1]);
    const VARIANT& last = *Dereference(&params->rgvarg[0]);
    if ((id == kLoad || id == kSave) && V_VT(&first) != VT_BSTR) return DISP_E_TYPEMISMATCH;
    if (id == kSave) return Save(first, last);
    VARIANT ignored{};
    return call(id, first, last, result ? result : &ignored);
  }

 private:
  static HRESULT call(DISPID id, const VARIANT& first, const VARIANT& last, VARIANT* result) {
    if (id == kLoad) return Load(first, result);
    if (id == kItem) {
      VARIANT index{};
      HRESULT hr = VariantChangeType(&index, const_cast<VARIANT*>(&last), 0, VT_I4);
      return FAILED(hr) ? hr : ElementOf(first, V_I4(&index), result);
    }
    if (id == kCount || id == kKind) {
      V_VT(result) = VT_I4;
      V_I4(result) = id == kCount ? CountOf(first) : V_VT(&first);
      return S_OK;
    }
    std::string bytes;
    HRESULT hr = BytesOf(first, &bytes);
    if (FAILED(hr)) return hr;
    if (id == kMisbehave) return Misbehave(bytes), S_OK;
    return id == kText ? TextFrom(bytes, result) : ArrayFrom(bytes, id == kBytes ? VT_UI1 : VT_VARIANT, result);
  }
};

Arrays arrays;

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  *object = nullptr;
  return clsid == kClass ? arrays.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return S_FALSE; }
