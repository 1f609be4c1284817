#include "attack/calls/records.h"

#include <cstring>

namespace {

constexpr ULONG kSize = 16;

class RecordInfo final : public IRecordInfo {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IRecordInfo ? this : nullptr;
    return *object == nullptr ? E_NOINTERFACE : S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP RecordInit(PVOID) override { return S_OK; }
  STDMETHODIMP RecordClear(PVOID) override { return S_OK; }
  STDMETHODIMP RecordCopy(PVOID from, PVOID to) override {
    std::memcpy(to, from, kSize);
    return S_OK;
  }
  STDMETHODIMP GetGuid(GUID* guid) override {
    *guid = IID_IRecordInfo;
    return S_OK;
  }
  STDMETHODIMP GetName(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetSize(ULONG* size) override {
    *size = kSize;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetField(PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetFieldNoCopy(PVOID, LPCOLESTR, VARIANT*, PVOID*) override { return E_NOTIMPL; }
  STDMETHODIMP PutField(ULONG, PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP PutFieldNoCopy(ULONG, PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetFieldNames(ULONG*, BSTR*) override { return E_NOTIMPL; }
  WINBOOL STDMETHODCALLTYPE IsMatchingType(IRecordInfo* other) override { return other == this; }
  PVOID STDMETHODCALLTYPE RecordCreate() override { return nullptr; }
  STDMETHODIMP RecordCreateCopy(PVOID, PVOID*) override { return E_NOTIMPL; }
  STDMETHODIMP RecordDestroy(PVOID) override { return S_OK; }
};

}  // namespace

IRecordInfo* AnyRecord() {
  static RecordInfo info;
  return &info;
}
