// What the programs that measure calls share: the shipped module beside the stub engine, its objects, late-bound calls.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

#include "measure.h"
#include "support/ptr.h"

namespace bench {

/// The factory of a class in a loaded library.
Ptr<IClassFactory> FactoryIn(HMODULE library, REFCLSID clsid);

/// The shipped module, loaded from the folder of the program.
HMODULE TheModule();

template <class Class, class Interface>
Ptr<Interface> New() {
  Ptr<Interface> made;
  Check(FactoryIn(TheModule(), __uuidof(Class))->CreateInstance(nullptr, __uuidof(Interface), made.voidOut()),
        "CreateInstance");
  return made;
}

/// The factory of Scripting.Dictionary, the yardstick of what an object of the platform costs.
Ptr<IClassFactory> DictionaryFactory();
Ptr<IDispatch> NewDictionary();

DISPID IdOf(IDispatch* object, const wchar_t* name);

/// An array of bytes, and one of VARIANTs that hold bytes.
VARIANT ByteArray(ULONG size);
VARIANT VariantArray(ULONG size);

/// A late-bound call whose arguments are the caller's.
inline void Invoke(IDispatch* object, DISPID id, WORD kind, VARIANT* arguments, UINT count, VARIANT* result) {
  DISPID put = DISPID_PROPERTYPUT;
  bool isPut = kind == DISPATCH_PROPERTYPUT;
  DISPPARAMS params{arguments, isPut ? &put : nullptr, count, isPut ? 1U : 0U};
  Check(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &params, result, nullptr, nullptr), "Invoke");
}

/// The families of rows; each measures and prints its own.
void MeasureBytes(const Effort& effort);
void MeasureLateBound(const Effort& effort);
void MeasureFactories(const Effort& effort);
void MeasureResults(const Effort& effort);

}  // namespace bench
