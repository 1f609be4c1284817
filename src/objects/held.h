// A property that holds another object of this module and shows the engine that object's record.
#pragma once

#include "com/object.h"
#include "com/ref.h"

/// What the property reads back as, and the owner of the record that the engine sees. They part when
/// Nothing is assigned: the property is then empty while the engine still sees the earlier object, kept on
/// purpose; the owner stays referenced so that its record lives.
template <class Class>
class Held {
 public:
  using Interface = typename Class::Primary;

  HRESULT get(Interface** value) const { return shown_.copyTo(value); }

  /// Assigns an object of this module, or null. Anything else is E_INVALIDARG and changes nothing.
  HRESULT put(Interface* value) {
    Class* object = com::Own<Class>(value);
    if (value && !object) return E_INVALIDARG;
    shown_ = com::Ref<Interface>(value);
    if (value) owner_ = shown_;
    return S_OK;
  }

  /// The object whose record the engine sees; null before the first assignment.
  Class* object() const { return com::Own<Class>(owner_.get()); }

 private:
  com::Ref<Interface> shown_;
  com::Ref<Interface> owner_;
};
