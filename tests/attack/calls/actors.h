// The objects that calls are made on and given: one of every class of the module, and objects of other makers.
#pragma once

#include <windows.h>

#include <dispex.h>
#include <oaidl.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "attack/shared/random.h"
#include "support/outer_object.h"
#include "support/ptr.h"
#include "support/temp_file.h"
#include "support/type_library.h"

/// Codes of foreign objects, which late-bound calls pass on.
inline const std::set<HRESULT> kForeignCodes{S_OK, S_FALSE, E_FAIL, E_NOINTERFACE, E_UNEXPECTED, DISP_E_MEMBERNOTFOUND};

/// An object of another maker that follows the rules of counting and no other.
class Stranger final : public IDispatchEx {
 public:
  enum class Manner { kRefuses, kSucceedsWithNull, kIsEverything, kWritesOnFailure, kReenters, kAnswersAnything };

  Stranger(Manner manner, Random& random, const std::function<void()>& reenter)
      : manner_(manner), random_(random), reenter_(reenter) {}

  /// The reference of its owner alone is left.
  bool isBalanced() const { return references_ == 1 && !wasUsedAfterItsEnd_; }
  long references() const { return references_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return count(1); }
  STDMETHODIMP_(ULONG) Release() override { return count(-1); }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override;
  STDMETHODIMP GetDispID(BSTR name, DWORD flags, DISPID* id) override;
  STDMETHODIMP InvokeEx(DISPID id, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* info,
                        IServiceProvider* caller) override;
  STDMETHODIMP DeleteMemberByName(BSTR, DWORD) override { return answer(); }
  STDMETHODIMP DeleteMemberByDispID(DISPID) override { return answer(); }
  STDMETHODIMP GetMemberProperties(DISPID, DWORD, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP GetMemberName(DISPID, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetNextDispID(DWORD, DISPID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetNameSpaceParent(IUnknown**) override { return E_NOTIMPL; }

 private:
  ULONG count(long change);
  HRESULT answer();

  Manner manner_;
  Random& random_;
  const std::function<void()>& reenter_;
  long references_ = 1;
  bool wasUsedAfterItsEnd_ = false;
};

class Actors {
 public:
  /// `reenter` runs while a stranger is asked something.
  Actors(Random& random, const TempFile& file, std::function<void()> reenter);
  Actors(const Actors&) = delete;
  Actors& operator=(const Actors&) = delete;
  ~Actors();

  /// The object of a class by its default interface; null for an interface that is no class's.
  Ptr<IDispatch> own(const std::string& interfaceName) const;
  /// An object of the module, a stranger, a proxy of another apartment, or null.
  Ptr<IDispatch> any();
  /// A file that exists.
  const std::wstring& file() const { return file_.path(); }
  /// Lets go of an object of the module: a new one takes its place.
  void replaceOne();
  /// True if a proxy was handed out: the platform keeps memory for its calls.
  bool usedProxy() const { return usedProxy_; }
  /// What is wrong with the counts of the strangers once all calls are over; empty if nothing is.
  std::string complaint() const;

 private:
  /// Some objects are parts of an outer one, and some have hosts that trust neither their data nor their callers.
  Ptr<IDispatch> make(const CoClass& coclass);

  Random& random_;
  std::function<void()> reenter_;
  const TempFile& file_;
  std::vector<std::unique_ptr<OuterObject>> outers_;
  std::map<std::string, Ptr<IDispatch>> own_;
  std::vector<std::unique_ptr<Stranger>> strangers_;
  bool usedProxy_ = false;
};
