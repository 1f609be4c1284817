// What a script's host pays for a call: names, properties, and a method in the three forms of its output.
#include <quivocom.h>

#include "calls/client.h"
#include "stub_engine/stub_engine.h"

namespace bench {
namespace {

VARIANT Number(LONG value) {
  VARIANT made{};
  V_VT(&made) = VT_I4;
  V_I4(&made) = value;
  return made;
}

VARIANT Text(const wchar_t* text) {
  VARIANT made{};
  V_VT(&made) = VT_BSTR;
  V_BSTR(&made) = SysAllocString(text);
  return made;
}

/// An object of a script's with the property `value`, which keeps nothing: its own cost is next to none.
class Holder : public IDispatch {
 public:
  STDMETHODIMP QueryInterface(REFIID, void** out) override {
    *out = this;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* id) override {
    *id = DISPID_VALUE;
    return S_OK;
  }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override { return S_OK; }
};

/// The property of an object against that of a dictionary, whose arguments before the value may be a key.
class PropertyRows {
 public:
  PropertyRows(const Effort& effort, IDispatch* object, DISPID id, IDispatch* dictionary, DISPID item)
      : effort_(effort), object_(object), id_(id), dictionary_(dictionary), item_(item) {}

  void get(const std::string& row, VARIANT* key, UINT keys) {
    PrintCalls(
        row, effort_, [&] { read(object_, id_, nullptr, 0); }, [&] { read(dictionary_, item_, key, keys); });
  }
  void put(const std::string& row, const VARIANT& value, const VARIANT& other, const VARIANT* key) {
    VARIANT ours[] = {value};
    VARIANT theirs[] = {other, key ? *key : VARIANT{}};
    PrintCalls(
        row, effort_, [&] { Invoke(object_, id_, DISPATCH_PROPERTYPUT, ours, 1, nullptr); },
        [&] { Invoke(dictionary_, item_, DISPATCH_PROPERTYPUT, theirs, key ? 2 : 1, nullptr); });
  }

 private:
  static void read(IDispatch* object, DISPID id, VARIANT* arguments, UINT count) {
    VARIANT value{};
    Invoke(object, id, DISPATCH_PROPERTYGET, arguments, count, &value);
    VariantClear(&value);
  }

  const Effort& effort_;
  IDispatch* object_;
  DISPID id_;
  IDispatch* dictionary_;
  DISPID item_;
};

void MeasureProperties(const Effort& effort) {
  auto certificate = New<Certificate, ICertificate>();
  auto dictionary = NewDictionary();
  VARIANT number = Number(1);
  PropertyRows numbers(effort, certificate, IdOf(certificate, L"keyUsage"), dictionary,
                       IdOf(dictionary, L"CompareMode"));
  numbers.put("late-bound put, number", number, number, nullptr);
  numbers.get("late-bound get, number", nullptr, 0);

  VARIANT key = Text(L"subject");
  VARIANT text = Text(L"CN=Anna, O=Example, C=RU");
  PropertyRows texts(effort, certificate, IdOf(certificate, L"subject"), dictionary, IdOf(dictionary, L"Item"));
  texts.put("late-bound put, string", text, text, &key);
  texts.get("late-bound get, string", &key, 1);
  VariantClear(&key);
  VariantClear(&text);
}

void MeasureMethod(const Effort& effort) {
  auto quivo = New<QUIVO, IQUIVO>();
  uint8_t digest[32] = {};
  TavlStubEngine()->output = {sizeof(digest), digest};
  VARIANT in = ByteArray(16);
  DISPID id = IdOf(quivo, L"HashMem");
  auto compiled = [&] {
    VARIANT hash{};
    Check(quivo->HashMem(in, &hash), "HashMem");
    VariantClear(&hash);
  };
  PrintCalls(
      "late-bound method, variable", effort,
      [&] {
        VARIANT hash{};
        VARIANT arguments[] = {{}, in};
        V_VT(&arguments[0]) = VT_BYREF | VT_VARIANT;
        V_VARIANTREF(&arguments[0]) = &hash;
        Invoke(quivo, id, DISPATCH_METHOD, arguments, 2, nullptr);
        VariantClear(&hash);
      },
      compiled);
  PrintCalls(
      "late-bound method, result", effort,
      [&] {
        VARIANT hash{};
        VARIANT arguments[] = {in};
        Invoke(quivo, id, DISPATCH_METHOD, arguments, 1, &hash);
        VariantClear(&hash);
      },
      compiled);
  Holder holder;
  PrintCalls(
      "late-bound method, holder", effort,
      [&] {
        VARIANT arguments[] = {{}, in};
        V_VT(&arguments[0]) = VT_DISPATCH;
        V_DISPATCH(&arguments[0]) = &holder;
        Invoke(quivo, id, DISPATCH_METHOD, arguments, 2, nullptr);
      },
      compiled);
  TavlStubEngine()->output = {};
  VariantClear(&in);
}

/// The longest name of an object's interface, and its last one.
struct Names {
  explicit Names(IDispatch* object) {
    Ptr<ITypeInfo> info;
    TYPEATTR* attributes = nullptr;
    Check(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.out()), "GetTypeInfo");
    Check(info->GetTypeAttr(&attributes), "GetTypeAttr");
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
      FUNCDESC* function = nullptr;
      BSTR name = nullptr;
      UINT count = 0;
      Check(info->GetFuncDesc(i, &function), "GetFuncDesc");
      Check(info->GetNames(function->memid, &name, 1, &count), "GetNames");
      info->ReleaseFuncDesc(function);
      last = name;
      if (last.size() > longest.size()) longest = last;
      SysFreeString(name);
    }
    info->ReleaseTypeAttr(attributes);
  }
  std::wstring longest, last;
};

void MeasureNames(const Effort& effort) {
  Ptr<IDispatch> quivo = New<QUIVO, IDispatch>();
  Ptr<IDispatch> dictionary = NewDictionary();
  Names ours(quivo);
  Names theirs(dictionary);
  auto row = [&](const char* name, const std::wstring& our, const std::wstring& their) {
    PrintCalls(
        name, effort, [&] { IdOf(quivo, our.c_str()); }, [&] { IdOf(dictionary, their.c_str()); });
  };
  row("GetIDsOfNames, longest", ours.longest, theirs.longest);
  row("GetIDsOfNames, last", ours.last, theirs.last);
}

}  // namespace

void MeasureLateBound(const Effort& effort) {
  MeasureNames(effort);
  MeasureProperties(effort);
  MeasureMethod(effort);
}

}  // namespace bench
