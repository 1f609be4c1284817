#include "support/foreign_object.h"

#include <utility>

namespace {

constexpr int kSlots = 80;

}  // namespace

struct ForeignSlots {
  static HRESULT STDMETHODCALLTYPE note(ForeignObject* self, int slot) {
    self->called_.push_back(slot);
    return E_UNEXPECTED;
  }
  template <int slot>
  static HRESULT STDMETHODCALLTYPE any(ForeignObject* self) {
    return note(self, slot);
  }
  static ULONG STDMETHODCALLTYPE addRef(ForeignObject* self) { return ++self->references_; }
  static ULONG STDMETHODCALLTYPE release(ForeignObject* self) { return --self->references_; }

  template <int... slotNumbers>
  static const void* const* table(std::integer_sequence<int, slotNumbers...>) {
    static const void* slots[] = {reinterpret_cast<const void*>(&any<slotNumbers>)...};
    slots[1] = reinterpret_cast<const void*>(&addRef);
    slots[2] = reinterpret_cast<const void*>(&release);
    return slots;
  }
};

ForeignObject::ForeignObject() : table_(ForeignSlots::table(std::make_integer_sequence<int, kSlots>())) {}

STDMETHODIMP LookAlike::QueryInterface(REFIID iid, void** object) {
  const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
  *object = known ? this : nullptr;
  if (known) AddRef();
  return known ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP LookAlike::GetTypeInfoCount(UINT* count) {
  *count = info_ == nullptr ? 0 : 1;
  return S_OK;
}

STDMETHODIMP LookAlike::GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) {
  index_ = index;
  locale_ = locale;
  *info = info_;
  if (info_ == nullptr) return failure_;
  info_->AddRef();
  return S_OK;
}
