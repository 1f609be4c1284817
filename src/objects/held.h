// A property that holds another object of this module and shows the engine that object's record.
#pragma once

#include "com/object.h"
#include "com/ref.h"

namespace objects {

/// Holds one reference. After Nothing is assigned the property reads as empty while the engine still sees the earlier
/// object, which stays referenced so that its record lives. On purpose: "Nothing does not clear" in docs/behaviour.md.
template <class Class>
class Held {
 public:
  using Interface = typename Class::Primary;

  HRESULT get(Interface** value) const { return isShown_ ? owner_.copyTo(value) : com::Ref<Interface>().copyTo(value); }

  /// Assigns an object of this module, or null. Anything else is E_INVALIDARG and changes nothing.
  HRESULT put(Interface* value) {
    if (value && !com::Own<Class>(value)) return E_INVALIDARG;
    isShown_ = value != nullptr;
    if (value) owner_ = com::Ref<Interface>(value);
    return S_OK;
  }

  /// The object whose record the engine sees; null before the first assignment.
  Class* object() const { return com::Own<Class>(owner_.get()); }

 private:
  com::Ref<Interface> owner_;
  bool isShown_ = false;
};

}  // namespace objects
