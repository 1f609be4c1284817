// The class factory: one object per class, which makes plain and aggregated objects.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace com {

/// Makes an object of one class; com::Create<Class> has this form.
using Creator = HRESULT (*)(IUnknown* outer, REFIID iid, void** out);

/// A new factory with one reference, the caller's; null without memory. Factories do not hold the module:
/// only objects and server locks do.
IClassFactory* NewClassFactory(Creator creator);

}  // namespace com
