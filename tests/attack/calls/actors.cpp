#include "attack/calls/actors.h"

#include <oleauto.h>

#include <algorithm>
#include <iterator>

#include "attack/calls/other_apartment.h"
#include "support/class_objects.h"
#include "support/object_safety.h"

namespace {

using Manner = Stranger::Manner;

constexpr Manner kManners[]{Manner::kRefuses,         Manner::kSucceedsWithNull, Manner::kIsEverything,
                            Manner::kWritesOnFailure, Manner::kReenters,         Manner::kAnswersAnything};

Ptr<IDispatch> MakeOf(const CoClass& coclass) {
  Ptr<IDispatch> object;
  FactoryOf(coclass.clsid)->CreateInstance(nullptr, coclass.iid, object.voidOut());
  return object;
}

}  // namespace

ULONG Stranger::count(long change) {
  if (references_ <= 0) wasUsedAfterItsEnd_ = true;
  references_ += change;
  return static_cast<ULONG>(references_);
}

HRESULT Stranger::answer() {
  if (references_ <= 0) wasUsedAfterItsEnd_ = true;
  if (manner_ == Manner::kReenters) reenter_();
  if (manner_ == Manner::kRefuses) return E_FAIL;
  if (manner_ != Manner::kAnswersAnything) return S_OK;
  auto code = kForeignCodes.begin();
  std::advance(code, random_.below(kForeignCodes.size()));
  return *code;
}

STDMETHODIMP Stranger::QueryInterface(REFIID iid, void** object) {
  const HRESULT hr = answer();
  *object = nullptr;
  bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(IDispatchEx);
  if (manner_ == Manner::kRefuses) known = false;
  if (manner_ == Manner::kSucceedsWithNull) return S_OK;
  if (manner_ == Manner::kIsEverything) known = true;
  if (manner_ == Manner::kAnswersAnything) known = SUCCEEDED(hr);
  if (known || manner_ == Manner::kWritesOnFailure) *object = static_cast<IDispatchEx*>(this);
  if (known && manner_ != Manner::kWritesOnFailure) AddRef();
  return known && manner_ != Manner::kWritesOnFailure ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP Stranger::GetTypeInfoCount(UINT* count) {
  *count = random_.below(2);
  return answer();
}

STDMETHODIMP Stranger::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  *info = nullptr;
  return answer();
}

STDMETHODIMP Stranger::GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) {
  for (UINT i = 0; i < count; ++i) ids[i] = random_.of<DISPID>({DISPID_UNKNOWN, DISPID_VALUE, 7, 0x7FFFFFFF});
  return answer();
}

STDMETHODIMP Stranger::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO* info, UINT*) {
  if (info != nullptr) *info = {};
  const HRESULT hr = answer();
  // The platform forgets the result of a call that failed.
  if (result != nullptr && SUCCEEDED(hr)) {
    V_VT(result) = VT_BSTR;
    V_BSTR(result) = SysAllocString(L"a result");
  }
  return hr;
}

STDMETHODIMP Stranger::GetDispID(BSTR, DWORD, DISPID* id) {
  *id = random_.of<DISPID>({DISPID_UNKNOWN, 7, -5});
  return answer();
}

STDMETHODIMP Stranger::InvokeEx(DISPID id, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                                EXCEPINFO* info, IServiceProvider*) {
  return Invoke(id, IID_NULL, locale, flags, arguments, result, info, nullptr);
}

Actors::Actors(Random& random, const TempFile& file, std::function<void()> reenter)
    : random_(random), reenter_(std::move(reenter)), file_(file) {
  for (const CoClass& coclass : Classes()) own_[coclass.interfaceName] = make(coclass);
  for (const Manner manner : kManners) strangers_.push_back(std::make_unique<Stranger>(manner, random_, reenter_));
}

Actors::~Actors() {
  own_.clear();
  // An outer object ends once nothing refers to it: not before the objects whose property it is.
  const auto isAlone = [](const auto& outer) { return outer->references == 1; };
  while (std::erase_if(outers_, isAlone) != 0) continue;
  // Objects of the module refer to what is left; their count shows it.
  for (std::unique_ptr<OuterObject>& outer : outers_) outer.release();
}

Ptr<IDispatch> Actors::make(const CoClass& coclass) {
  Ptr<IDispatch> made;
  if (random_.chance(15)) {
    outers_.push_back(std::make_unique<OuterObject>(FactoryOf(coclass.clsid).get()));
    made = outers_.back()->inner.as<IDispatch>();
  } else {
    made = MakeOf(coclass);
  }
  if (random_.chance(15)) {
    constexpr DWORD kAll = INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;
    const Ptr<IObjectSafety> safety = made.as<IObjectSafety>();
    if (safety.get() != nullptr) safety->SetInterfaceSafetyOptions(IID_IDispatch, kAll, kAll);
  }
  return made;
}

Ptr<IDispatch> Actors::own(const std::string& interfaceName) const {
  const auto found = own_.find(interfaceName);
  return found == own_.end() ? Ptr<IDispatch>() : found->second;
}

Ptr<IDispatch> Actors::any() {
  if (random_.chance(10)) return {};
  if (random_.chance(40)) return Ptr<IDispatch>::share(random_.pick(strangers_).get());
  if (random_.oneIn(100)) {
    usedProxy_ = true;
    return ProxyOfOtherApartment();
  }
  return own(random_.pick(Classes()).interfaceName);
}

void Actors::replaceOne() {
  const CoClass& coclass = random_.pick(Classes());
  own_[coclass.interfaceName] = make(coclass);
}

std::string Actors::complaint() const {
  const auto found =
      std::find_if(strangers_.begin(), strangers_.end(), [](const auto& stranger) { return !stranger->isBalanced(); });
  if (found == strangers_.end()) return "";
  return "stranger " + std::to_string(found - strangers_.begin()) + " is left with " +
         std::to_string((*found)->references()) + " references";
}
